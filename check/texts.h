#pragma once

#include <initializer_list>
#include <string>
#include <utility>

namespace mirvane::check {

/// A text in both languages, UTF-8; %1 to %9 are replaced by values.
struct Phrase {
  const char* greek;
  const char* english;
};

enum class Language { kGreek, kEnglish };

/// Sets the language of all further output.
void speak(Language language);
bool speaksGreek();

/// The phrase in that language, with its values.
std::string say(const Phrase& phrase, std::initializer_list<std::string> values = {});

// All texts of the program, except the names of codes, which the component has.
namespace texts {

// ---- Command line
constexpr Phrase kAbout = {
    "Ελέγχει την εγκατάσταση του MirvaneEFT.dll και την ταμειακή. Χωρίς επιλογές εξετάζει τον υπολογιστή.\nΚωδικός "
    "εξόδου: 0 δεν βρέθηκε πρόβλημα, 1 προειδοποιήσεις, 2 βλάβες, 3 λάθος στη γραμμή εντολών ή η αναφορά δεν γράφτηκε.",
    "Checks the installation of MirvaneEFT.dll and the register. Without options it checks this machine.\nExit code: "
    "0 no problems found, 1 warnings, 2 faults, 3 invalid command line or the report could not be written."};
constexpr Phrase kPortOption = {"ρωτά την ταμειακή σε αυτή τη θύρα: COM3 ή 192.168.1.50:9100",
                                "ask the register at this port: COM3 or 192.168.1.50:9100"};
constexpr Phrase kFolderOption = {
    "εξετάζει το MirvaneEFT.dll αυτού του φακέλου, για ταμείο που το χρησιμοποιεί χωρίς καταχώριση",
    "check the MirvaneEFT.dll in this folder, for a till that uses it without registration"};
constexpr Phrase kFindOption = {"δοκιμάζει όλες τις σειριακές θύρες του υπολογιστή",
                                "try every serial port of this machine"};
constexpr Phrase kSlipOption = {"τυπώνει και ένα μικρό μη φορολογικό δελτίο· με --port",
                                "print a short non-fiscal slip; with --port"};
constexpr Phrase kSelfTestOption = {"εκτελεί μια δοκιμαστική ημέρα με τον εξομοιωτή",
                                    "simulate a trading day with the emulator"};
constexpr Phrase kEmulatorOption = {"ο εξομοιωτής, όταν δεν βρίσκεται δίπλα στο πρόγραμμα",
                                    "the emulator, if it is not next to this program"};
constexpr Phrase kReportOption = {"γράφει τα ευρήματα και τα νεότερα αρχεία καταγραφής σε ένα αρχείο για αποστολή",
                                  "write the findings and the newest records into a file to send"};
constexpr Phrase kJsonOption = {"δίνει το αποτέλεσμα ως JSON, για προγράμματα",
                                "print the result as JSON, for programs"};
constexpr Phrase kLanguageOption = {"el ή en", "el or en"};
constexpr Phrase kVersionOption = {"η έκδοση", "the version"};
constexpr Phrase kHelpOption = {"αυτή η βοήθεια", "this help"};
constexpr Phrase kUsage = {"Λάθος στη γραμμή εντολών: %1", "Invalid command line: %1"};
constexpr Phrase kSlipNeedsPort = {"το --slip θέλει και --port", "--slip requires --port"};

// ---- Headings and verdict
constexpr Phrase kDoctor = {"Ο υπολογιστής", "This machine"};
constexpr Phrase kRegister = {"Η ταμειακή στη θύρα %1", "The register at %1"};
constexpr Phrase kPorts = {"Οι θύρες", "The ports"};
constexpr Phrase kSelfTest = {"Δοκιμαστική ημέρα", "Simulated trading day"};
constexpr Phrase kDayOfBits = {"Δοκιμαστική ημέρα, %1 bit", "Simulated trading day, %1-bit"};
constexpr Phrase kNoProblems = {"Δεν βρέθηκε πρόβλημα.", "No problems found."};
constexpr Phrase kVerdict = {"Βλάβες: %1, προειδοποιήσεις: %2.", "Faults: %1, warnings: %2."};
constexpr Phrase kNotChecked = {"Δεν ελέγχθηκαν: %1.", "Not checked: %1."};
constexpr Phrase kMachineScope = {"ο υπολογιστής", "this machine"};
constexpr Phrase kRegisterScope = {"η ταμειακή (--port)", "the register (--port)"};
constexpr Phrase kPrintingScope = {"η εκτύπωση (--slip)", "printing (--slip)"};
constexpr Phrase kSaleScope = {"αν η ταμειακή δέχεται πωλήσεις", "whether the register accepts sales"};
constexpr Phrase kReportWritten = {"Η αναφορά γράφτηκε: %1", "The report was written: %1"};
constexpr Phrase kReportHolds = {
    "Περιέχει ό,τι γράφεται εδώ, την έκδοση των Windows, το όνομα του χρήστη και το τέλος των νεότερων αρχείων "
    "καταγραφής. Εκεί τα μυστικά, όπως το κλειδί του διακομιστή της ΑΑΔΕ, είναι καλυμμένα.",
    "It holds what is shown here, the Windows version, the user's name, and the end of the newest records. Secrets in "
    "the records, such as the tax server's key, are masked."};
constexpr Phrase kSendTo = {"Στείλτε την στο %1.", "Send it to %1."};
constexpr Phrase kReportFailed = {"Η αναφορά δεν γράφεται: %1", "The report cannot be written: %1"};
constexpr Phrase kNewestRecords = {"Αρχείο καταγραφής: %1", "Record: %1"};
constexpr Phrase kPressKey = {"Πατήστε Enter για να κλείσει το παράθυρο.", "Press Enter to close this window."};
constexpr Phrase kMenu = {
    "Τι άλλο να ελεγχθεί;\n  1  Μια ταμειακή σε μια θύρα ή διεύθυνση\n  2  Σε ποια σειριακή θύρα είναι η ταμειακή\n  3 "
    " Μια δοκιμαστική ημέρα με τον εξομοιωτή\n  4  Γράψε μια αναφορά στην επιφάνεια εργασίας, για αποστολή\nΑριθμός "
    "και Enter· μόνο Enter κλείνει το παράθυρο: ",
    "What next?\n  1  Ask a register at a port or address\n  2  Find the register at the serial ports\n  3  Simulate a "
    "trading day with the emulator\n  4  Write a report to the desktop, to send\nType a number and press Enter; Enter "
    "alone closes this window: "};
constexpr Phrase kWhichPort = {"Θύρα, όπως COM3 ή 192.168.1.50:9100: ", "Port, such as COM3 or 192.168.1.50:9100: "};
constexpr Phrase kReportPort = {"Θύρα της ταμειακής, για να ρωτηθεί και αυτή· μόνο Enter για καμία: ",
                                "Port of the register, to ask it too; Enter alone for none: "};

// ---- Registration and files
constexpr Phrase kForAllUsers = {"για όλους", "for everybody"};
constexpr Phrase kForUser = {"για αυτόν τον χρήστη", "for this user"};
constexpr Phrase kNotRegistered = {
    "Το MirvaneEFT.dll δεν είναι καταχωρισμένο: τα προγράμματα δεν μπορούν να το χρησιμοποιήσουν.",
    "MirvaneEFT.dll is not registered: programs cannot use it."};
constexpr Phrase kNotRegisteredFor = {
    "Το MirvaneEFT.dll των %1 bit δεν είναι καταχωρισμένο: τα προγράμματα %1 bit δεν μπορούν να το χρησιμοποιήσουν.",
    "The %1-bit MirvaneEFT.dll is not registered: %1-bit programs cannot use it."};
constexpr Phrase kIfTillIs = {"Χρειάζεται μόνο αν το πρόγραμμα του ταμείου είναι %1 bit. %2",
                              "Needed only if the till program is %1-bit. %2"};
constexpr Phrase kRegisterIt = {"Για προγράμματα %1 bit, σε παράθυρο εντολών ως διαχειριστής:\n%2 \"%3\"",
                                "For %1-bit programs, in a command window run as administrator:\n%2 \"%3\""};
constexpr Phrase kInstallIt = {
    "Εγκαταστήστε ξανά το πακέτο. Ή αντιγράψτε τα MirvaneEFT.dll των %1 bit και Lang.dat στον φάκελο "
    "C:\\MirvaneEFT\\win%1 και, σε παράθυρο εντολών ως διαχειριστής:\n%2 \"C:\\MirvaneEFT\\win%1\\MirvaneEFT.dll\"",
    "Install MirvaneEFT again. Or copy the %1-bit MirvaneEFT.dll and Lang.dat into the folder C:\\MirvaneEFT\\win%1 "
    "and, in a command window run as administrator:\n%2 \"C:\\MirvaneEFT\\win%1\\MirvaneEFT.dll\""};
constexpr Phrase kRegistered = {"Τα προγράμματα %1 bit βρίσκουν το %2, έκδοση %3, καταχωρισμένο %4.",
                                "%1-bit programs find %2, version %3, registered %4."};
constexpr Phrase kUserOnly = {
    "Η καταχώριση %1 bit είναι μόνο για αυτόν τον χρήστη: υπηρεσίες και προγράμματα που τρέχουν ως διαχειριστής δεν τη "
    "βλέπουν.",
    "The %1-bit registration is for this user only: services and programs run as administrator do not see it."};
constexpr Phrase kTwoRegistered = {
    "Το MirvaneEFT.dll των %1 bit είναι καταχωρισμένο δύο φορές: για τον χρήστη το %2, που ισχύει, και για όλους το "
    "%3.",
    "The %1-bit MirvaneEFT.dll is registered twice: for this user %2, which is used, and for everybody %3."};
constexpr Phrase kUnregisterUser = {"Για να μείνει η καταχώριση για όλους:\n%1 /u /n /i:user \"%2\"",
                                    "To keep only the registration for everybody:\n%1 /u /n /i:user \"%2\""};
constexpr Phrase kMoved = {"Η καταχώριση %1 bit δείχνει στο %2, που δεν υπάρχει: μετακινήθηκε ή σβήστηκε.",
                           "The %1-bit registration leads to %2, which does not exist: it was moved or deleted."};
constexpr Phrase kWrongBits = {"Τα προγράμματα %1 bit παίρνουν το %2, που είναι των %3 bit.",
                               "%1-bit programs get %2, which is the %3-bit DLL."};
constexpr Phrase kNoLibrary = {"Το %1 δεν είναι έγκυρο DLL.", "%1 is not a valid DLL."};
constexpr Phrase kReplaceFile = {"Αντιγράψτε το ξανά από το πακέτο.", "Copy it again from the release."};
constexpr Phrase kNoFileInFolder = {"Στον φάκελο %1 δεν υπάρχει MirvaneEFT.dll.", "There is no MirvaneEFT.dll in %1."};
constexpr Phrase kGiveFolder = {"Δώστε τον φάκελο όπου το πρόγραμμα του ταμείου έχει το MirvaneEFT.dll.",
                                "Enter the folder in which the till program has its MirvaneEFT.dll."};
constexpr Phrase kInFolder = {"Το %1 είναι των %2 bit, έκδοση %3. Το χρησιμοποιούν προγράμματα %2 bit.",
                              "%1 is the %2-bit DLL, version %3. %2-bit programs can use it."};
constexpr Phrase kIncomplete = {"Από τις κλάσεις των %1 bit λείπουν ή δείχνουν αλλού %2: %3.",
                                "Of the %1-bit classes, %2 are missing or registered elsewhere: %3."};
constexpr Phrase kCannotBeMade = {"Ένα πρόγραμμα %1 bit δεν μπορεί να δημιουργήσει το αντικείμενο: %2.",
                                  "A %1-bit program cannot create the object: %2."};
constexpr Phrase kTried = {"Ένα πρόγραμμα %1 bit δημιουργεί το αντικείμενο.", "A %1-bit program creates the object."};
constexpr Phrase kNoAnswerOfTwin = {"το πρόγραμμα δεν απάντησε", "the program did not answer"};
constexpr Phrase kVersionsDiffer = {"Τα δύο αρχεία έχουν διαφορετικές εκδόσεις: %1 στα 32 bit, %2 στα 64 bit.",
                                    "The two files have different versions: 32-bit %1, 64-bit %2."};
constexpr Phrase kInstallBoth = {"Εγκαταστήστε και τα δύο από το ίδιο πακέτο.", "Install both from the same release."};
constexpr Phrase kNoCatalogue = {"Λείπει το %1: τα μηνύματα προς τον χειριστή δεν έχουν κείμενο.",
                                 "%1 is missing: messages to the operator have no text."};
constexpr Phrase kBadCatalogue = {"Το %1 είναι ελλιπές ή κατεστραμμένο.", "%1 is incomplete or damaged."};
constexpr Phrase kCopyCatalogue = {"Αντιγράψτε το Lang.dat από το πακέτο στον φάκελο %1.",
                                   "Copy Lang.dat from the release into the folder %1."};
constexpr Phrase kCatalogue = {"Το %1 είναι στη θέση του.", "%1 is in place."};
constexpr Phrase kBlocked = {"Το %1 ήρθε από το διαδίκτυο και τα Windows μπορεί να μην το αφήσουν να τρέξει.",
                             "%1 came from the internet, and Windows may not let it run."};
constexpr Phrase kUnblock = {"Στο αρχείο δεξί κλικ, Ιδιότητες, «Κατάργηση αποκλεισμού».",
                             "Right-click the file, Properties, \"Unblock\"."};
constexpr Phrase kInThisProgram = {"Το MirvaneEFT είναι ενσωματωμένο σε αυτό το πρόγραμμα: δεν υπάρχει καταχώριση.",
                                   "The component is built into this program: there is no registration."};

// ---- Folders and disk
constexpr Phrase kJournalWritable = {"Το ημερολόγιο μπορεί να γραφτεί στον φάκελο %1.",
                                     "The journal can be written to %1."};
constexpr Phrase kNoRights = {"Ο χρήστης δεν μπορεί να γράψει στον φάκελο %1: η ημέρα δεν κλείνει χωρίς το ημερολόγιο.",
                              "This user cannot write to %1: the day cannot be closed without its journal."};
constexpr Phrase kGiveRights = {
    "Σε παράθυρο εντολών ως διαχειριστής:\nicacls \"%1\" /grant \"*S-1-5-32-545:(OI)(CI)M\" /T",
    "In a command window run as administrator:\nicacls \"%1\" /grant \"*S-1-5-32-545:(OI)(CI)M\" /T"};
constexpr Phrase kCannotBeMadeFolder = {
    "Ο φάκελος %1 δεν μπορεί να δημιουργηθεί: η ημέρα δεν κλείνει χωρίς το ημερολόγιο.",
    "The folder %1 cannot be created: the day cannot be closed without its journal."};
constexpr Phrase kMakeFolder = {
    "Σε παράθυρο εντολών ως διαχειριστής:\nmkdir \"%1\"\nicacls \"%1\" /grant \"*S-1-5-32-545:(OI)(CI)M\"",
    "In a command window run as administrator:\nmkdir \"%1\"\nicacls \"%1\" /grant \"*S-1-5-32-545:(OI)(CI)M\""};
constexpr Phrase kIsFile = {"Το %1 είναι αρχείο και όχι φάκελος: το ημερολόγιο δεν μπορεί να γραφτεί.",
                            "%1 is a file, not a folder: the journal cannot be written."};
constexpr Phrase kRenameFile = {"Μετονομάστε το αρχείο %1.", "Rename the file %1."};
constexpr Phrase kNoJournalFolders = {"Το κουτί ημερολογίου δεν δίνει φακέλους.",
                                      "The journal box does not report any folders."};
constexpr Phrase kMendBox = {"Εγκαταστήστε ξανά το κουτί ημερολογίου (quorndll_webupdate.box).",
                             "Install the journal box (quorndll_webupdate.box) again."};
constexpr Phrase kDiskFull = {"Στον δίσκο του %1 μένουν μόνο %2 MB.", "Only %2 MB are free on the disk of %1."};
constexpr Phrase kFreeDisk = {"Ελευθερώστε χώρο στον δίσκο.", "Free some disk space."};
constexpr Phrase kDisk = {"Ελεύθερος χώρος στον δίσκο του %1: %2 MB.", "Free space on the disk of %1: %2 MB."};
constexpr Phrase kNoRecords = {
    "Η επικοινωνία με την ταμειακή δεν καταγράφεται. Για να καταγράφεται, δημιουργήστε τον φάκελο %1.",
    "Communication is not being recorded. To turn it on, create the folder %1."};
constexpr Phrase kRecords = {"Η επικοινωνία με την ταμειακή καταγράφεται στον φάκελο %1.",
                             "Communication is being recorded in %1."};
constexpr Phrase kRecordsReadOnly = {"Η επικοινωνία δεν καταγράφεται: ο χρήστης δεν μπορεί να γράψει στον φάκελο %1.",
                                     "Communication is not being recorded: this user cannot write to %1."};
constexpr Phrase kRecordsElsewhere = {
    "Για αυτόν τον χρήστη τα Windows κρατούν τον φάκελο %1 στη θέση του %2: μόνο ορισμένα προγράμματα γράφουν εκεί.",
    "For this user Windows keeps the folder %1 in place of %2: only some programs write there."};

// ---- Ports
constexpr Phrase kPortList = {"Σειριακές θύρες: %1.", "Serial ports: %1."};
constexpr Phrase kNoPorts = {"Ο υπολογιστής δεν έχει σειριακή θύρα. Μια ταμειακή στο δίκτυο δεν τη χρειάζεται.",
                             "This machine has no serial port. A register on the network does not need one."};
constexpr Phrase kNoSuchPort = {"Η θύρα %1 δεν υπάρχει.", "There is no port %1."};
constexpr Phrase kUsePort = {"Δώστε μία από αυτές: %1, ή διεύθυνση και θύρα όπως 192.168.1.50:9100.",
                             "Use one of these: %1, or an address and port such as 192.168.1.50:9100."};
constexpr Phrase kPlugIn = {
    "Συνδέστε το καλώδιο ή τον μετατροπέα USB και εγκαταστήστε τον οδηγό του, ή δώστε διεύθυνση και θύρα όπως "
    "192.168.1.50:9100.",
    "Plug in the cable or the USB adapter and install its driver, or use an address and port such as "
    "192.168.1.50:9100."};
constexpr Phrase kPortTaken = {"Τη θύρα %1 τη χρησιμοποιεί άλλο πρόγραμμα.", "Port %1 is in use by another program."};
constexpr Phrase kPortTakenBy = {"Τη θύρα %1 τη χρησιμοποιεί το πρόγραμμα %2.", "Port %1 is in use by %2."};
constexpr Phrase kCloseHolder = {"Κλείστε το %1 και δοκιμάστε ξανά.", "Close %1 and try again."};
constexpr Phrase kCloseOthers = {
    "Κλείστε το πρόγραμμα του ταμείου και ό,τι άλλο χρησιμοποιεί τη θύρα και δοκιμάστε ξανά.",
    "Close the till program and any other program that uses the port, and try again."};
constexpr Phrase kNotConfigured = {"Η θύρα %1 δεν υποστηρίζει 115200 bit ανά δευτερόλεπτο, 8 bit, χωρίς ισοτιμία.",
                                   "Port %1 does not support 115200 bits per second, 8 bits, no parity."};
constexpr Phrase kOtherAdapter = {"Χρησιμοποιήστε άλλη θύρα ή άλλον μετατροπέα.", "Use another port or adapter."};
constexpr Phrase kNoNetwork = {"Η διεύθυνση %1 δεν ανοίγει.", "The address %1 cannot be opened."};
constexpr Phrase kCheckNetwork = {"Ελέγξτε τη διεύθυνση και τη σύνδεση του υπολογιστή στο δίκτυο.",
                                  "Check the address and this machine's network."};
constexpr Phrase kNoPortNumber = {"Από τη διεύθυνση %1 λείπει ο αριθμός θύρας.", "The address %1 lacks a port number."};
constexpr Phrase kAddPortNumber = {
    "Δώστε διεύθυνση και θύρα, όπως %1:9100. Η θύρα φαίνεται στις ρυθμίσεις της ταμειακής.",
    "Enter address and port, such as %1:9100. The port is in the register's settings."};
constexpr Phrase kNotAnAddress = {"Το %1 δεν είναι διεύθυνση με αριθμούς: ονόματα υπολογιστών δεν γίνονται δεκτά.",
                                  "%1 is not a numeric address: host names are not accepted."};
constexpr Phrase kUseNumbers = {"Δώστε διεύθυνση και θύρα με αριθμούς, όπως 192.168.1.50:9100.",
                                "Enter address and port in numbers, such as 192.168.1.50:9100."};
constexpr Phrase kSilent = {"Η θύρα ανοίγει, αλλά δεν ήρθε απάντηση σε %1 δευτερόλεπτα.",
                            "The port opens, but there is no answer within %1 seconds."};
constexpr Phrase kSilentNetwork = {"Από τη διεύθυνση %1 δεν ήρθε απάντηση σε %2 δευτερόλεπτα.",
                                   "There is no answer from %1 within %2 seconds."};
constexpr Phrase kSwitchOn = {
    "Ανοίξτε την ταμειακή και ελέγξτε το καλώδιο και τη θύρα· το --find δείχνει σε ποια θύρα απαντά.",
    "Switch the register on and check the cable and the port; --find shows at which port it answers."};
constexpr Phrase kSwitchOnNetwork = {
    "Ανοίξτε την ταμειακή και ελέγξτε τη διεύθυνσή της, τον αριθμό θύρας (%1), το καλώδιο δικτύου και το τείχος "
    "προστασίας (UDP %1).",
    "Switch the register on and check its address, its port number (%1), the network cable and the firewall (UDP %1)."};
constexpr Phrase kNoRegister = {"Η συσκευή στη θύρα δεν απαντά όπως μια ταμειακή: %1.",
                                "The device at the port does not answer like a register: %1."};
constexpr Phrase kOtherPort = {"Ελέγξτε ποια συσκευή είναι σε αυτή τη θύρα.", "Check which device is at this port."};
constexpr Phrase kBroken = {"Η ταμειακή έπαψε να απαντά: %1.", "The register stopped answering: %1."};

// ---- The register
constexpr Phrase kModel = {"Απαντά η ταμειακή %1, έκδοση %2.", "A register answers: %1, version %2."};
constexpr Phrase kSerialNumber = {"Αριθμός μητρώου: %1.", "Serial number: %1."};
constexpr Phrase kRefused = {"Η ταμειακή απαντά στο %1 με τον κωδικό %2: %3.",
                             "The register answers %1 with code %2: %3."};
constexpr Phrase kMendCode = {
    "Διορθώστε ό,τι αναφέρει η ταμειακή. Για τους κωδικούς δείτε το manual\\result-codes.html.",
    "Fix what the register reports. For codes see manual\\result-codes.html."};
constexpr Phrase kExplained = {"%1 (%2)", "%1 (%2)"};
constexpr Phrase kPaper = {"Ο εκτυπωτής έχει χαρτί και είναι έτοιμος.", "The printer has paper and is ready."};
constexpr Phrase kPrinter = {"Ο εκτυπωτής δεν είναι έτοιμος: %1.", "The printer is not ready: %1."};
constexpr Phrase kMendPrinter = {"Βάλτε χαρτί, κλείστε το καπάκι και ελέγξτε ότι ο εκτυπωτής είναι συνδεδεμένος.",
                                 "Put in paper, close the cover and check that the printer is connected."};
constexpr Phrase kDayOpen = {"Η ημέρα είναι ανοιχτή.", "The day is open."};
constexpr Phrase kDayClosed = {"Η ημέρα δεν έχει ανοίξει.", "The day is not open."};
constexpr Phrase kToday = {"Σήμερα: αποδείξεις %1, σύνολο %2.", "Today: receipts %1, total %2."};
constexpr Phrase kReceiptOpen = {"Μια απόδειξη είναι ανοιχτή.", "A receipt is open."};
constexpr Phrase kFinishReceipt = {"Ολοκληρώστε ή ακυρώστε την από το πρόγραμμα του ταμείου.",
                                   "Finish or cancel it with the till program."};
constexpr Phrase kFlashNearFull = {"Η μνήμη του ημερολογίου γεμίζει.", "The journal's memory is nearly full."};
constexpr Phrase kCloseDay = {"Κλείστε την ημέρα με δελτίο Ζ.", "Close the day with a Z report."};
constexpr Phrase kClock = {"Το ρολόι της δείχνει %1 %2, όπως ο υπολογιστής (διαφορά %3 δευτ.).",
                           "Its clock shows %1 %2, as this machine's does (difference %3 s)."};
constexpr Phrase kClockDiffers = {"Το ρολόι της δείχνει %1 %2: διαφέρει από του υπολογιστή κατά %3.",
                                  "Its clock shows %1 %2: it differs from this machine's by %3."};
constexpr Phrase kSetClock = {"Δείτε ποιο από τα δύο ρολόγια είναι λάθος και ρυθμίστε το.",
                              "Find out which of the two clocks is wrong, and set it."};
constexpr Phrase kClockUnread = {"Η ώρα της ταμειακής δεν διαβάζεται: %1.", "The register's time cannot be read: %1."};
constexpr Phrase kDays = {"%1 ημέρες", "%1 days"};
constexpr Phrase kMinutes = {"%1 λεπτά", "%1 minutes"};
constexpr Phrase kSlipPrinted = {"Τυπώθηκε ένα μη φορολογικό δελτίο.", "A non-fiscal slip was printed."};
constexpr Phrase kSlipTitle = {"ΔΟΚΙΜΗ ΕΚΤΥΠΩΣΗΣ", "ΔΟΚΙΜΗ ΕΚΤΥΠΩΣΗΣ / PRINT TEST"};
constexpr Phrase kSlipNotFiscal = {"ΔΕΝ ΕΙΝΑΙ ΑΠΟΔΕΙΞΗ", "ΔΕΝ ΕΙΝΑΙ ΑΠΟΔΕΙΞΗ / NOT A RECEIPT"};
constexpr Phrase kNoSlip = {"Το δελτίο δεν τυπώθηκε.", "No slip was printed."};

// Translations of the register's printer messages, recognised by the first text.
constexpr std::pair<const char*, Phrase> kPrinterWords[] = {
    {"Χαρτιού", {"τέλος χαρτιού", "out of paper"}},
    {"Αποσυνδεδεμένος", {"ο εκτυπωτής δεν είναι συνδεδεμένος", "the printer is disconnected"}},
    {"δεν απαντά", {"ο εκτυπωτής δεν απαντά", "the printer does not answer"}},
    {"Σφάλμα", {"σφάλμα συσκευής", "device error"}},
};

// ---- Looking for the register
constexpr Phrase kFound = {"%1: %2", "%1: %2"};
constexpr Phrase kNothingFound = {"Σε καμία θύρα δεν απάντησε ταμειακή.", "No register answered on any port."};
constexpr Phrase kSwitchOnAny = {
    "Ανοίξτε την ταμειακή και ελέγξτε το καλώδιό της. Αν είναι στο δίκτυο, δώστε διεύθυνση και θύρα: --port "
    "192.168.1.50:9100",
    "Switch the register on and check its cable. If it is on the network, give its address and port: --port "
    "192.168.1.50:9100"};
constexpr Phrase kNotInTime = {"%1: η θύρα δεν άνοιξε σε %2 δευτερόλεπτα.",
                               "%1: the port did not open within %2 seconds."};

// ---- Self-test
constexpr Phrase kNoEmulator = {"Το %1 δεν βρέθηκε.", "%1 was not found."};
constexpr Phrase kPutEmulator = {"Βάλτε το %1 δίπλα σε αυτό το πρόγραμμα, ή δώστε --emulator ΑΡΧΕΙΟ.",
                                 "Put %1 next to this program, or use --emulator FILE."};
constexpr Phrase kEmulatorFails = {"Ο εξομοιωτής δεν ξεκινά: %1.", "The emulator does not start: %1."};
constexpr Phrase kRunEmulator = {"Ξεκινήστε τον με διπλό κλικ για να δείτε γιατί: %1",
                                 "Double-click it to see why: %1"};
constexpr Phrase kNoTwin = {"Τα %1 bit δεν δοκιμάστηκαν: το mirvane-check.exe των %1 bit δεν βρέθηκε.",
                            "The %1-bit component was not tested: the %1-bit mirvane-check.exe was not found."};
constexpr Phrase kPutTwin = {"Αποσυμπιέστε ολόκληρο το πακέτο και τρέξτε το πρόγραμμα από εκεί.",
                             "Extract the whole release and run this program from there."};
constexpr Phrase kTwinSilent = {"Η δοκιμή των %1 bit δεν τελείωσε σε %2 δευτερόλεπτα.",
                                "The %1-bit test did not finish within %2 seconds."};
constexpr Phrase kRunDoctor = {"Τρέξτε το πρόγραμμα χωρίς επιλογές: δείχνει τι λείπει.",
                               "Run this program without options: it shows what is missing."};
constexpr Phrase kSendReport = {"Γράψτε μια αναφορά με --self-test --report ΑΡΧΕΙΟ και στείλτε την.",
                                "Write a report with --self-test --report FILE and send it."};
constexpr Phrase kStep = {"%1", "%1"};
constexpr Phrase kStepFails = {"%1: %2.", "%1: %2."};
constexpr Phrase kNotExpected = {"%1 έδωσε %2 (%3) αντί για %4", "%1 gave %2 (%3) instead of %4"};
constexpr Phrase kClassesStep = {"Όλες οι κλάσεις (%1)", "Every class (%1)"};
constexpr Phrase kConnectStep = {"Σύνδεση και αριθμός μητρώου", "Connection and serial number"};
constexpr Phrase kCashStep = {"Απόδειξη με μετρητά και ρέστα", "A receipt paid in cash, with change"};
constexpr Phrase kVoidStep = {"Αλλαγή είδους και επιστροφή, πληρωμή με επιταγή", "A void and a refund, paid by cheque"};
constexpr Phrase kAdjustStep = {"Εκπτώσεις και προσαυξήσεις, σε είδος και σε υποσύνολο",
                                "Discounts and mark-ups, on an item and on the subtotal"};
constexpr Phrase kMixedStep = {"Δύο τρόποι πληρωμής σε μία απόδειξη", "Two payments for one receipt"};
constexpr Phrase kCancelStep = {"Ακύρωση απόδειξης", "A cancelled receipt"};
constexpr Phrase kCardStep = {"Πληρωμή με κάρτα", "A payment by card"};
constexpr Phrase kDeclinedStep = {"Απόρριψη κάρτας, μετά μετρητά", "A declined card, then cash"};
constexpr Phrase kWaitWindowStep = {"Το παράθυρο αναμονής άνοιξε και έκλεισε", "The wait window opened and closed"};
constexpr Phrase kCashDrawerStep = {"Κατάθεση, ανάληψη, συρτάρι, σχόλιο", "Cash in, cash out, drawer, comment"};
constexpr Phrase kPulledStep = {"Η γραμμή κόπηκε και επανήλθε", "The line was interrupted and recovered"};
constexpr Phrase kTotalsStep = {"Σύνολα ημέρας", "The day's totals"};
constexpr Phrase kXStep = {"Δελτίο Χ", "X report"};
constexpr Phrase kZStep = {"Δελτίο Ζ με το ημερολόγιο στον δίσκο", "Z report, with the journal on the disk"};
constexpr Phrase kJournalWindowStep = {"Το παράθυρο του ημερολογίου άνοιξε και έκλεισε",
                                       "The journal window opened and closed"};
constexpr Phrase kDisconnectStep = {"Αποσύνδεση", "Disconnection"};
constexpr Phrase kPaperStep = {"Το χαρτί του εξομοιωτή τα έχει όλα, στα ελληνικά",
                               "The emulator's paper shows everything, in Greek"};
constexpr Phrase kNoWindow = {"δεν φάνηκε παράθυρο", "no window appeared"};
constexpr Phrase kNoJournalFile = {"λείπει το %1", "%1 is missing"};
constexpr Phrase kPaperLacks = {"λείπει «%1»", "\"%1\" is missing"};

}  // namespace texts
}  // namespace mirvane::check
