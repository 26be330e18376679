#pragma once

#include <initializer_list>
#include <string>

namespace mirvane::check {

/// A text in both languages, UTF-8; %1 to %9 stand for values.
struct Phrase {
  const char* greek;
  const char* english;
};

enum class Language { kGreek, kEnglish };

/// The language of everything that is said from now on.
void speak(Language language);
bool speaksGreek();

/// The phrase in the language, with its values.
std::string say(const Phrase& phrase, std::initializer_list<std::string> values = {});

// Everything that the program says, but for the names of codes, which the component has.
namespace texts {

// ---- Command line
constexpr Phrase kAbout = {
    "Ελέγχει την εγκατάσταση του MirvaneEFT.dll και την ταμειακή. Χωρίς επιλογές: εξετάζει τον υπολογιστή.\n"
    "Κωδικός εξόδου: 0 όλα καλά, 1 προειδοποιήσεις, 2 βλάβες, 3 λάθος επιλογή ή η αναφορά δεν γράφτηκε.",
    "Checks the installation of MirvaneEFT.dll and the register. Without options it examines this machine.\n"
    "Exit code: 0 all is well, 1 warnings, 2 faults, 3 a wrong option or the report could not be written."};
constexpr Phrase kPortOption = {"ρωτά την ταμειακή σε αυτή τη θύρα: COM3 ή 192.168.1.50:9100",
                                "ask the register at this port: COM3 or 192.168.1.50:9100"};
constexpr Phrase kFindOption = {"δοκιμάζει όλες τις σειριακές θύρες του υπολογιστή",
                                "try every serial port of this machine"};
constexpr Phrase kSlipOption = {"τυπώνει και ένα μικρό μη φορολογικό δελτίο· με --port",
                                "print a short slip that is not fiscal; with --port"};
constexpr Phrase kSelfTestOption = {"παίζει μια ολόκληρη ημέρα με τον εξομοιωτή", "play a whole day with the emulator"};
constexpr Phrase kEmulatorOption = {"ο εξομοιωτής, όταν δεν βρίσκεται δίπλα στο πρόγραμμα",
                                    "the emulator, where it does not lie beside this program"};
constexpr Phrase kReportOption = {"γράφει τα πάντα σε ένα αρχείο για αποστολή, με τα νεότερα records",
                                  "write all of it into one file to send, with the newest records"};
constexpr Phrase kLanguageOption = {"el ή en", "el or en"};
constexpr Phrase kVersionOption = {"η έκδοση", "the version"};
constexpr Phrase kHelpOption = {"αυτή η βοήθεια", "this help"};
constexpr Phrase kUsage = {"Λάθος στη γραμμή εντολών: %1", "The command line cannot be followed: %1"};
constexpr Phrase kSlipNeedsPort = {"το --slip θέλει και --port", "--slip wants --port as well"};

// ---- Headings and verdict
constexpr Phrase kDoctor = {"Ο υπολογιστής", "This machine"};
constexpr Phrase kRegister = {"Η ταμειακή στη θύρα %1", "The register at %1"};
constexpr Phrase kPorts = {"Οι θύρες", "The ports"};
constexpr Phrase kSelfTest = {"Μια ημέρα με τον εξομοιωτή", "A day with the emulator"};
constexpr Phrase kDayOfBits = {"Μια ημέρα με τον εξομοιωτή, %1 bit", "A day with the emulator, %1-bit"};
constexpr Phrase kAllWell = {"Όλα καλά.", "All is well."};
constexpr Phrase kVerdict = {"Βλάβες: %1, προειδοποιήσεις: %2.", "Faults: %1, warnings: %2."};
constexpr Phrase kReportWritten = {"Η αναφορά γράφτηκε: %1", "The report was written: %1"};
constexpr Phrase kReportFailed = {"Η αναφορά δεν γράφεται: %1", "The report cannot be written: %1"};
constexpr Phrase kNewestRecords = {"Τα νεότερα records: %1", "The newest records: %1"};
constexpr Phrase kPressKey = {"Πατήστε Enter.", "Press Enter."};

// ---- Registration and files
constexpr Phrase kForEverybody = {"για όλους", "for everybody"};
constexpr Phrase kForUser = {"για αυτόν τον χρήστη", "for this user"};
constexpr Phrase kNotRegistered = {"Το MirvaneEFT.dll δεν είναι καταχωρημένο: κανένα πρόγραμμα δεν το βρίσκει.",
                                   "MirvaneEFT.dll is not registered: no program finds it."};
constexpr Phrase kNotRegisteredFor = {
    "Τα προγράμματα %1 bit δεν το βρίσκουν: το MirvaneEFT.dll των %1 bit δεν είναι καταχωρημένο.",
    "%1-bit programs do not find it: the %1-bit MirvaneEFT.dll is not registered."};
constexpr Phrase kIfTillIs = {"Μόνο αν το πρόγραμμα του ταμείου είναι %1 bit. %2",
                              "Only if the till's program is a %1-bit one. %2"};
constexpr Phrase kRegisterIt = {"Ως διαχειριστής: \"%1\" \"%2\"", "As administrator: \"%1\" \"%2\""};
constexpr Phrase kInstallIt = {
    "Εγκαταστήστε ξανά το πακέτο, ή αντιγράψτε το MirvaneEFT.dll των %1 bit με το Lang.dat σε έναν φάκελο και, ως "
    "διαχειριστής: \"%2\" MirvaneEFT.dll",
    "Install the package again, or copy the %1-bit MirvaneEFT.dll and Lang.dat into a folder and there, as "
    "administrator: \"%2\" MirvaneEFT.dll"};
constexpr Phrase kRegistered = {"Τα προγράμματα %1 bit βρίσκουν το %2, έκδοση %3, καταχωρημένο %4.",
                                "%1-bit programs find %2, version %3, registered %4."};
constexpr Phrase kUserOnly = {
    "Η καταχώρηση %1 bit είναι μόνο για αυτόν τον χρήστη: υπηρεσίες και προγράμματα που τρέχουν ως διαχειριστής δεν τη "
    "βλέπουν.",
    "The %1-bit registration is for this user alone: services and programs run as administrator do not see it."};
constexpr Phrase kTwoRegistered = {
    "Τα %1 bit είναι καταχωρημένα δύο φορές: για τον χρήστη το %2, που ισχύει, και για όλους το %3.",
    "The %1-bit component is registered twice: for this user %2, which counts, and for everybody %3."};
constexpr Phrase kUnregisterUser = {"Για να μείνει αυτή για όλους: \"%1\" /u /n /i:user \"%2\"",
                                    "To keep the one for everybody: \"%1\" /u /n /i:user \"%2\""};
constexpr Phrase kMoved = {"Τα προγράμματα %1 bit ζητούν το %2, που δεν υπάρχει: μετακινήθηκε ή σβήστηκε.",
                           "%1-bit programs are sent to %2, which is not there: it was moved or deleted."};
constexpr Phrase kWrongBits = {"Τα προγράμματα %1 bit παίρνουν το %2, που είναι των %3 bit.",
                               "%1-bit programs are given %2, which is the %3-bit one."};
constexpr Phrase kNoLibrary = {"Το %1 δεν είναι αρχείο DLL που διαβάζεται.", "%1 is no DLL that can be read."};
constexpr Phrase kReplaceFile = {"Αντιγράψτε το ξανά από το πακέτο στη θέση του.",
                                 "Copy it from the package to its place again."};
constexpr Phrase kIncomplete = {"Από τις κλάσεις των %1 bit λείπουν ή δείχνουν αλλού %2: %3.",
                                "Of the %1-bit classes %2 are missing or lead elsewhere: %3."};
constexpr Phrase kCannotBeMade = {"Ένα πρόγραμμα %1 bit δεν μπορεί να δημιουργήσει το αντικείμενο: %2.",
                                  "A %1-bit program cannot create the object: %2."};
constexpr Phrase kTried = {"Ένα πρόγραμμα %1 bit δημιουργεί το αντικείμενο.", "A %1-bit program creates the object."};
constexpr Phrase kNoAnswerOfTwin = {"το πρόγραμμα δεν απάντησε", "the program did not answer"};
constexpr Phrase kVersionsDiffer = {"Τα δύο αρχεία έχουν διαφορετικές εκδόσεις: %1 στα 32 bit, %2 στα 64 bit.",
                                    "The two files are of different versions: 32-bit %1, 64-bit %2."};
constexpr Phrase kInstallBoth = {"Εγκαταστήστε και τα δύο από το ίδιο πακέτο.", "Install both from one package."};
constexpr Phrase kNoCatalogue = {"Λείπει το %1: μηνύματα προς τον χειριστή μένουν κενά.",
                                 "%1 is missing: messages for the operator stay empty."};
constexpr Phrase kBadCatalogue = {"Το %1 δεν είναι ολόκληρο.", "%1 is not whole."};
constexpr Phrase kCopyCatalogue = {"Αντιγράψτε το Lang.dat από το πακέτο στον φάκελο %1.",
                                   "Copy Lang.dat from the package into the folder %1."};
constexpr Phrase kCatalogue = {"Το %1 είναι στη θέση του.", "%1 is in its place."};
constexpr Phrase kBlocked = {"Το %1 ήρθε από το διαδίκτυο και τα Windows μπορεί να μην το αφήσουν να τρέξει.",
                             "%1 came from the internet, and Windows may not let it run."};
constexpr Phrase kUnblock = {"Στο αρχείο δεξί κλικ, Ιδιότητες, «Κατάργηση αποκλεισμού».",
                             "Right-click the file, Properties, \"Unblock\"."};
constexpr Phrase kInThisProgram = {"Ο πυρήνας είναι μέσα σε αυτό το πρόγραμμα: δεν υπάρχει καταχώρηση.",
                                   "The core is in this program itself: there is no registration here."};

// ---- Folders and disk
constexpr Phrase kJournalWritable = {"Το ημερολόγιο μπορεί να γραφτεί στον φάκελο %1.",
                                     "The journal can be written into %1."};
constexpr Phrase kNoRights = {
    "Ο χρήστης δεν έχει δικαίωμα εγγραφής στον φάκελο %1: η ημέρα δεν κλείνει χωρίς το ημερολόγιο.",
    "This user has no right to write into %1: without its journal the day cannot be closed."};
constexpr Phrase kGiveRights = {"Ως διαχειριστής: icacls \"%1\" /grant *S-1-5-32-545:(OI)(CI)M /T",
                                "As administrator: icacls \"%1\" /grant *S-1-5-32-545:(OI)(CI)M /T"};
constexpr Phrase kCannotBeMadeFolder = {
    "Ο φάκελος %1 δεν μπορεί να δημιουργηθεί: η ημέρα δεν κλείνει χωρίς το ημερολόγιο.",
    "The folder %1 cannot be made: without its journal the day cannot be closed."};
constexpr Phrase kMakeFolder = {
    "Ως διαχειριστής, δημιουργήστε τον και δώστε δικαίωμα: mkdir \"%1\" & icacls \"%1\" /grant "
    "*S-1-5-32-545:(OI)(CI)M",
    "As administrator, make it and give the right to write: mkdir \"%1\" & icacls \"%1\" /grant "
    "*S-1-5-32-545:(OI)(CI)M"};
constexpr Phrase kIsFile = {"Το %1 είναι αρχείο και όχι φάκελος: το ημερολόγιο δεν μπορεί να γραφτεί.",
                            "%1 is a file and not a folder: the journal cannot be written."};
constexpr Phrase kRenameFile = {"Μετονομάστε το αρχείο %1.", "Rename the file %1."};
constexpr Phrase kNoJournalFolders = {"Το κουτί ημερολογίου δεν λέει φακέλους.", "The journal box tells no folders."};
constexpr Phrase kMendBox = {"Εγκαταστήστε ξανά το κουτί ημερολογίου (quorndll_webupdate.box).",
                             "Install the journal box (quorndll_webupdate.box) again."};
constexpr Phrase kDiskFull = {"Στον δίσκο του %1 μένουν μόνο %2 MB.", "Only %2 MB are left on the disk of %1."};
constexpr Phrase kFreeDisk = {"Ελευθερώστε χώρο στον δίσκο.", "Make room on the disk."};
constexpr Phrase kDisk = {"Ελεύθερος χώρος στον δίσκο του %1: %2 MB.", "Free space on the disk of %1: %2 MB."};
constexpr Phrase kNoRecords = {"Δεν γίνεται καταγραφή της γραμμής. Τη βάζει σε λειτουργία ένας φάκελος %1.",
                               "The line is not recorded. A folder %1 switches that on."};
constexpr Phrase kRecords = {"Η γραμμή καταγράφεται στον φάκελο %1.", "The line is recorded in %1."};
constexpr Phrase kRecordsReadOnly = {"Η γραμμή δεν καταγράφεται: ο χρήστης δεν μπορεί να γράψει στον φάκελο %1.",
                                     "The line is not recorded: this user cannot write into %1."};

// ---- Ports
constexpr Phrase kPortList = {"Σειριακές θύρες: %1.", "Serial ports: %1."};
constexpr Phrase kNoPorts = {"Ο υπολογιστής δεν έχει σειριακή θύρα. Μια ταμειακή στο δίκτυο δεν τη χρειάζεται.",
                             "This machine has no serial port. A register on the network needs none."};
constexpr Phrase kNoSuchPort = {"Η θύρα %1 δεν υπάρχει.", "There is no port %1."};
constexpr Phrase kUsePort = {"Δώστε μία από αυτές: %1, ή μια διεύθυνση όπως 192.168.1.50:9100.",
                             "Give one of these: %1, or an address such as 192.168.1.50:9100."};
constexpr Phrase kPlugIn = {
    "Συνδέστε το καλώδιο ή τον μετατροπέα USB και εγκαταστήστε τον οδηγό του, ή δώστε μια διεύθυνση όπως "
    "192.168.1.50:9100.",
    "Plug in the cable or the USB adapter and install its driver, or give an address such as 192.168.1.50:9100."};
constexpr Phrase kPortTaken = {"Τη θύρα %1 την έχει άλλο πρόγραμμα.", "The port %1 is taken by another program."};
constexpr Phrase kPortTakenBy = {"Τη θύρα %1 την έχει το πρόγραμμα %2.", "The port %1 is taken by %2."};
constexpr Phrase kCloseHolder = {"Κλείστε το %1 και δοκιμάστε ξανά.", "Close %1 and try again."};
constexpr Phrase kCloseOthers = {
    "Κλείστε το πρόγραμμα του ταμείου και ό,τι άλλο χρησιμοποιεί θύρες, και δοκιμάστε ξανά.",
    "Close the till's program and whatever else uses ports, and try again."};
constexpr Phrase kNotConfigured = {"Η θύρα %1 δεν δέχεται 115200 bit ανά δευτερόλεπτο, 8 bit, χωρίς ισοτιμία.",
                                   "The port %1 does not take 115200 bits per second, 8 bits, no parity."};
constexpr Phrase kOtherAdapter = {"Χρησιμοποιήστε άλλη θύρα ή άλλον μετατροπέα.", "Use another port or adapter."};
constexpr Phrase kNoNetwork = {"Η διεύθυνση %1 δεν ανοίγει.", "The address %1 cannot be opened."};
constexpr Phrase kCheckNetwork = {"Ελέγξτε τη διεύθυνση και τη σύνδεση του υπολογιστή στο δίκτυο.",
                                  "Check the address and this machine's network."};
constexpr Phrase kOpened = {"Η θύρα ανοίγει.", "The port opens."};
constexpr Phrase kSilent = {"Η θύρα ανοίγει, αλλά κανείς δεν απαντά σε %1 δευτερόλεπτα.",
                            "The port opens, but nobody answers within %1 seconds."};
constexpr Phrase kSwitchOn = {
    "Ανοίξτε την ταμειακή και ελέγξτε το καλώδιο και τη θύρα· το --find δείχνει σε ποια θύρα απαντά.",
    "Switch the register on and check the cable and the port; --find shows at which port it answers."};
constexpr Phrase kSwitchOnNetwork = {
    "Ανοίξτε την ταμειακή και ελέγξτε τη διεύθυνσή της, το καλώδιο δικτύου και το τείχος προστασίας (UDP %1).",
    "Switch the register on and check its address, the network cable and the firewall (UDP %1)."};
constexpr Phrase kNoRegister = {"Στη θύρα κάτι απαντά, αλλά όχι όπως μια ταμειακή: %1.",
                                "Something answers at the port, but not as a register: %1."};
constexpr Phrase kOtherPort = {"Ελέγξτε ποια συσκευή είναι σε αυτή τη θύρα.", "Check which device is at this port."};
constexpr Phrase kBroken = {"Η ταμειακή έπαψε να απαντά: %1.", "The register has stopped answering: %1."};

// ---- The register
constexpr Phrase kModel = {"Απαντά η ταμειακή %1, έκδοση %2.", "A register answers: %1, version %2."};
constexpr Phrase kSerialNumber = {"Αριθμός μητρώου: %1.", "Serial number: %1."};
constexpr Phrase kRefused = {"Η ταμειακή απαντά στο %1 με τον κωδικό %2: %3.",
                             "The register answers %1 with code %2: %3."};
constexpr Phrase kMendCode = {"Διορθώστε την κατάσταση που λέει η ταμειακή. Οι κωδικοί: docs/result-codes.md.",
                              "Mend what the register tells of. The codes: docs/result-codes.md."};
constexpr Phrase kPaper = {"Ο εκτυπωτής έχει χαρτί και είναι έτοιμος.", "The printer has paper and is ready."};
constexpr Phrase kPrinter = {"Ο εκτυπωτής δεν είναι έτοιμος: %1.", "The printer is not ready: %1."};
constexpr Phrase kMendPrinter = {"Βάλτε χαρτί, κλείστε το καπάκι και ελέγξτε ότι ο εκτυπωτής είναι συνδεδεμένος.",
                                 "Put paper in, close the cover and see that the printer is connected."};
constexpr Phrase kDayOpen = {"Η ημέρα είναι ανοικτή.", "The day is open."};
constexpr Phrase kDayClosed = {"Η ημέρα δεν έχει ανοίξει.", "The day is not open."};
constexpr Phrase kReceiptOpen = {"Μια απόδειξη είναι ανοικτή.", "A receipt is open."};
constexpr Phrase kFinishReceipt = {"Ολοκληρώστε ή ακυρώστε την από το πρόγραμμα του ταμείου.",
                                   "Finish or cancel it with the till's program."};
constexpr Phrase kFlashNearFull = {"Η μνήμη του ημερολογίου γεμίζει.", "The journal's memory is nearly full."};
constexpr Phrase kCloseDay = {"Κλείστε την ημέρα με δελτίο Ζ.", "Close the day with a Z report."};
constexpr Phrase kClock = {"Το ρολόι της δείχνει %1 %2, όπως ο υπολογιστής (διαφορά %3 δευτ.).",
                           "Its clock shows %1 %2, as this machine's does (difference %3 s)."};
constexpr Phrase kClockDiffers = {"Το ρολόι της δείχνει %1 %2: διαφέρει από του υπολογιστή κατά %3.",
                                  "Its clock shows %1 %2: it differs from this machine's by %3."};
constexpr Phrase kSetClock = {"Δείτε ποιο από τα δύο ρολόγια είναι λάθος και ρυθμίστε το.",
                              "See which of the two clocks is wrong, and set it."};
constexpr Phrase kClockUnread = {"Η ώρα της ταμειακής δεν διαβάζεται: %1.", "The register's time cannot be read: %1."};
constexpr Phrase kDays = {"%1 ημέρες", "%1 days"};
constexpr Phrase kMinutes = {"%1 λεπτά", "%1 minutes"};
constexpr Phrase kSlipPrinted = {"Τυπώθηκε ένα μη φορολογικό δελτίο.", "A slip that is not fiscal was printed."};
constexpr Phrase kSlipTitle = {"ΔΟΚΙΜΗ ΕΚΤΥΠΩΣΗΣ", "ΔΟΚΙΜΗ ΕΚΤΥΠΩΣΗΣ / PRINT TEST"};
constexpr Phrase kSlipNotFiscal = {"ΔΕΝ ΕΙΝΑΙ ΑΠΟΔΕΙΞΗ", "ΔΕΝ ΕΙΝΑΙ ΑΠΟΔΕΙΞΗ / NOT A RECEIPT"};
constexpr Phrase kNoSlip = {"Το δελτίο δεν τυπώθηκε.", "No slip was printed."};

// ---- Looking for the register
constexpr Phrase kFound = {"%1: %2", "%1: %2"};
constexpr Phrase kNothingFound = {"Σε καμία θύρα δεν απάντησε ταμειακή.", "At no port did a register answer."};
constexpr Phrase kNotInTime = {"%1: η θύρα δεν άνοιξε σε %2 δευτερόλεπτα.",
                               "%1: the port did not open within %2 seconds."};

// ---- Self-test
constexpr Phrase kNoEmulator = {"Ο εξομοιωτής δεν βρέθηκε: %1.", "There is no emulator: %1."};
constexpr Phrase kPutEmulator = {"Βάλτε το %1 δίπλα σε αυτό το πρόγραμμα, ή δώστε --emulator ΑΡΧΕΙΟ.",
                                 "Put %1 beside this program, or give --emulator FILE."};
constexpr Phrase kEmulatorFails = {"Ο εξομοιωτής δεν ξεκινά: %1.", "The emulator does not start: %1."};
constexpr Phrase kRunEmulator = {"Ξεκινήστε τον με το χέρι: %1", "Start it by hand: %1"};
constexpr Phrase kNoTwin = {"Τα %1 bit δεν δοκιμάστηκαν: το mirvane-check.exe των %1 bit δεν βρέθηκε.",
                            "The %1-bit component was not tried: there is no %1-bit mirvane-check.exe."};
constexpr Phrase kPutTwin = {"Αποσυμπιέστε ολόκληρο το πακέτο και τρέξτε το πρόγραμμα από εκεί.",
                             "Unpack the whole package and run this program there."};
constexpr Phrase kTwinSilent = {"Η δοκιμή των %1 bit δεν τελείωσε σε %2 δευτερόλεπτα.",
                                "The %1-bit trial did not end within %2 seconds."};
constexpr Phrase kRunDoctor = {"Τρέξτε το πρόγραμμα χωρίς επιλογές: δείχνει τι λείπει.",
                               "Run this program without options: it shows what is missing."};
constexpr Phrase kSendReport = {"Στείλτε μας το αρχείο του --self-test --report ΑΡΧΕΙΟ.",
                                "Send us the file of --self-test --report FILE."};
constexpr Phrase kStep = {"%1", "%1"};
constexpr Phrase kStepFails = {"%1: %2.", "%1: %2."};
constexpr Phrase kNotExpected = {"%1 έδωσε %2 (%3) αντί για %4", "%1 gave %2 (%3) instead of %4"};
constexpr Phrase kClassesStep = {"Όλες οι κλάσεις (%1)", "Every class (%1)"};
constexpr Phrase kConnectStep = {"Σύνδεση και αριθμός μητρώου", "Connection and serial number"};
constexpr Phrase kCashStep = {"Απόδειξη με μετρητά και ρέστα", "A receipt paid in cash, with change"};
constexpr Phrase kVoidStep = {"Αλλαγή είδους και επιστροφή, πληρωμή με επιταγή", "A void and a refund, paid by cheque"};
constexpr Phrase kAdjustStep = {"Εκπτώσεις και αυξήσεις, σε είδος και σε σύνολο",
                                "Discounts and mark-ups, of an item and of the subtotal"};
constexpr Phrase kMixedStep = {"Δύο τρόποι πληρωμής σε μία απόδειξη", "Two payments for one receipt"};
constexpr Phrase kCancelStep = {"Ακύρωση απόδειξης", "A cancelled receipt"};
constexpr Phrase kCardStep = {"Πληρωμή με κάρτα", "A payment by card"};
constexpr Phrase kDeclinedStep = {"Άρνηση κάρτας, μετά μετρητά", "A refused card, then cash"};
constexpr Phrase kWaitWindowStep = {"Το παράθυρο αναμονής άνοιξε και έκλεισε", "The waiting window came and went"};
constexpr Phrase kCashDrawerStep = {"Κατάθεση, ανάληψη, συρτάρι, σχόλιο", "Cash in, cash out, drawer, comment"};
constexpr Phrase kPulledStep = {"Η γραμμή κόπηκε και ξανάρθε", "The line was pulled, and came back"};
constexpr Phrase kTotalsStep = {"Σύνολα ημέρας", "The day's totals"};
constexpr Phrase kXStep = {"Δελτίο Χ", "X report"};
constexpr Phrase kZStep = {"Δελτίο Ζ με το ημερολόγιο στον δίσκο", "Z report, with the journal on the disk"};
constexpr Phrase kJournalWindowStep = {"Το παράθυρο του ημερολογίου άνοιξε και έκλεισε",
                                       "The journal's window came and went"};
constexpr Phrase kDisconnectStep = {"Αποσύνδεση", "Disconnection"};
constexpr Phrase kPaperStep = {"Στο χαρτί του εξομοιωτή είναι όλα, στα ελληνικά",
                               "The emulator's paper has all of it, in Greek"};
constexpr Phrase kNoWindow = {"δεν φάνηκε παράθυρο", "no window was seen"};
constexpr Phrase kNoJournalFile = {"λείπει το %1", "%1 is missing"};
constexpr Phrase kPaperLacks = {"λείπει «%1»", "\"%1\" is missing"};

}  // namespace texts
}  // namespace mirvane::check
