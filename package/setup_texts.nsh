; The installer's texts, in English and Greek. It uses the language of Windows.

; text NAME ENGLISH GREEK
!macro text NAME ENGLISH GREEK
  LangString ${NAME} ${LANG_ENGLISH} "${ENGLISH}"
  LangString ${NAME} ${LANG_GREEK} "${GREEK}"
!macroend

; ---- The pages
!insertmacro text WHAT_IT_IS "Connects point-of-sale programs to Greek fiscal cash registers" \
  "Συνδέει προγράμματα ταμείου με φορολογικές ταμειακές μηχανές"
!insertmacro text UPGRADE "MirvaneEFT $FormerVersion is installed on this computer:" \
  "Στον υπολογιστή είναι εγκατεστημένο το MirvaneEFT $FormerVersion:"
!insertmacro text UPGRADE_MORE "Setup replaces it with version ${VERSION}. Journals, records and your own files stay. \
  Programs that use it may stay open." \
  "Θα αντικατασταθεί από την έκδοση ${VERSION}. Τα ημερολόγια, οι καταγραφές και τα δικά σας αρχεία μένουν. \
  Τα προγράμματα που το χρησιμοποιούν μπορούν να μείνουν ανοιχτά."
!insertmacro text WHO "Who can use it?" "Ποιος θα το χρησιμοποιεί;"
!insertmacro text EVERYBODY "&Everybody on this computer" "&Όλοι σε αυτόν τον υπολογιστή"
!insertmacro text HOW_FOR_EVERYBODY "To install for everybody, close Setup, right-click the setup file, and choose Run as administrator." \
  "Για εγκατάσταση για όλους, κλείστε το πρόγραμμα, κάντε δεξί κλικ στο αρχείο του και επιλέξτε «Εκτέλεση ως διαχειριστής»."
!insertmacro text JUST_ME "Only &me. Services and programs that run as administrator cannot use it." \
  "Μόνο &εγώ. Υπηρεσίες και προγράμματα που εκτελούνται ως διαχειριστής δεν μπορούν να το χρησιμοποιήσουν."
!insertmacro text KEEP_RECORDS "&Record communication with the register, for troubleshooting." \
  "&Καταγραφή της επικοινωνίας με την ταμειακή, για εντοπισμό βλαβών."
!insertmacro text SERVICE "&Service for receipts over HTTP, at the register:" \
  "&Υπηρεσία αποδείξεων μέσω HTTP, για την ταμειακή:"
!insertmacro text FINISHED "MirvaneEFT ${VERSION} is installed." "Το MirvaneEFT ${VERSION} εγκαταστάθηκε."
!insertmacro text SHOW_GUIDES "Open the &guides" "Άνοιγμα των &οδηγιών"
!insertmacro text START_EMULATOR "Start the cash register &emulator" "Εκκίνηση του &εξομοιωτή ταμειακής"
!insertmacro text START_CHECK "&Check the installation" "Έ&λεγχος της εγκατάστασης"

; ---- The start menu
!insertmacro text MENU_EMULATOR "Cash register emulator" "Εξομοιωτής ταμειακής"
!insertmacro text MENU_CHECK "Check MirvaneEFT" "Έλεγχος του MirvaneEFT"
!insertmacro text MENU_GUIDES "Guides" "Οδηγίες"
!insertmacro text MENU_UNINSTALL "Uninstall MirvaneEFT" "Απεγκατάσταση του MirvaneEFT"

; ---- Files in use
!insertmacro text IN_USE "A program is still using the old files. It will use the new ones the next time it starts." \
  "Κάποιο πρόγραμμα χρησιμοποιεί ακόμη τα παλιά αρχεία. Θα χρησιμοποιήσει τα νέα όταν ξεκινήσει ξανά."
!insertmacro text AFTER_RESTART "A program is holding the old files. They will be replaced when Windows restarts." \
  "Κάποιο πρόγραμμα κρατά τα παλιά αρχεία. Τα νέα θα τα αντικαταστήσουν στην επόμενη εκκίνηση των Windows."
!insertmacro text GONE_AFTER_RESTART "A program is still using the files. They will be removed when Windows restarts." \
  "Κάποιο πρόγραμμα χρησιμοποιεί ακόμη τα αρχεία. Τα Windows θα τα διαγράψουν στην επόμενη εκκίνηση."
!insertmacro text STAYS "A program is using a file, which was not removed. Close the program and delete the file:" \
  "Κάποιο πρόγραμμα χρησιμοποιεί ένα αρχείο, που δεν διαγράφηκε. Κλείστε το πρόγραμμα και διαγράψτε το αρχείο:"

; ---- Refusals and failures
!insertmacro text HELD "A program is using this file:" "Κάποιο πρόγραμμα χρησιμοποιεί το αρχείο:"
!insertmacro text UNWRITTEN "This file cannot be written:" "Δεν μπορεί να γραφτεί το αρχείο:"
!insertmacro text REFUSED "This file could not be registered:" "Δεν έγινε η καταχώριση του αρχείου:"
!insertmacro text ONLY_32_BIT "64-bit programs on this ARM computer cannot use it. 32-bit programs can." \
  "Τα προγράμματα 64-bit αυτού του υπολογιστή ARM δεν μπορούν να το χρησιμοποιήσουν. Τα 32-bit μπορούν."
!insertmacro text NOT_SHARED "The users of this computer cannot write to the folder:" \
  "Οι χρήστες του υπολογιστή δεν μπορούν να γράψουν στον φάκελο:"
!insertmacro text NO_SERVICE "The service does not run:" "Η υπηρεσία δεν λειτουργεί:"
!insertmacro text SERVICE_FOR_EVERYBODY "The service is only for an installation for everybody." \
  "Η υπηρεσία είναι μόνο για εγκατάσταση για όλους."
!insertmacro text ADMINISTRATOR "Administrator rights are required." "Χρειάζονται δικαιώματα διαχειριστή."
!insertmacro text UPGRADE_BY_ADMINISTRATOR "MirvaneEFT is installed for everybody. To upgrade it, right-click the \
  setup file and choose Run as administrator." \
  "Το MirvaneEFT είναι εγκατεστημένο για όλους. Για αναβάθμιση, κάντε δεξί κλικ στο αρχείο εγκατάστασης και επιλέξτε \
  «Εκτέλεση ως διαχειριστής»."
!insertmacro text IS_FOR_EVERYBODY "MirvaneEFT is installed for everybody. Uninstall it before you install it for one user." \
  "Το MirvaneEFT είναι εγκατεστημένο για όλους. Απεγκαταστήστε το πριν το εγκαταστήσετε για έναν χρήστη."
!insertmacro text IS_NEWER "MirvaneEFT $FormerVersion is installed, which is newer than ${VERSION}." \
  "Είναι εγκατεστημένο το MirvaneEFT $FormerVersion, που είναι νεότερο από το ${VERSION}."
!insertmacro text REPLACE_NEWER "Replace it with the older version?" "Να αντικατασταθεί από την παλαιότερη έκδοση;"
!insertmacro text UNKNOWN_SWITCH "Unknown switch:" "Άγνωστη παράμετρος:"
!insertmacro text WRONG_FOLDER "/D= requires a full path on an existing drive, as the last switch and without quotes:" \
  "Το /D= θέλει πλήρη διαδρομή σε υπαρκτή μονάδα δίσκου, στο τέλος της εντολής και χωρίς εισαγωγικά:"
!insertmacro text WRONG_LOG "The log file cannot be written:" "Το αρχείο καταγραφής της εγκατάστασης δεν μπορεί να γραφτεί:"
!insertmacro text CONTRADICTION "/ALLUSERS and /CURRENTUSER cannot be combined." \
  "Τα /ALLUSERS και /CURRENTUSER δεν συνδυάζονται."
!insertmacro text USAGE "\
  /S$\tno windows, no questions$\r$\n\
  /ALLUSERS$\tinstall for everybody (requires administrator rights)$\r$\n\
  /CURRENTUSER$\tinstall for the current user only$\r$\n\
  /RECORDS=1$\trecord communication with the register$\r$\n\
  /SERVICE=1$\tinstall the service for receipts over HTTP; instead of 1, options of mirvane-service$\r$\n\
  /DOWNGRADE$\treplace a newer version$\r$\n\
  /LOG=FILE$\twrite the log to FILE instead of $TEMP\MirvaneEFT-setup.log$\r$\n\
  /D=FOLDER$\tinstall in FOLDER; the last switch, without quotes$\r$\n$\r$\n\
  Exit codes: 0 installed, 1 cancelled, 2 a file cannot be written, 3 or 4 the 32-bit or 64-bit DLL cannot be \
  registered, 5 users cannot write to the records folder, 6 wrong switch, 7 a newer version is installed, 8 installed for everybody, \
  9 the service does not run, \
  740 administrator rights required, 3010 installed while old files are in use" "\
  /S$\tχωρίς παράθυρα και ερωτήσεις$\r$\n\
  /ALLUSERS$\tεγκατάσταση για όλους (μόνο από διαχειριστή)$\r$\n\
  /CURRENTUSER$\tεγκατάσταση μόνο για τον τρέχοντα χρήστη$\r$\n\
  /RECORDS=1$\tκαταγραφή της επικοινωνίας με την ταμειακή$\r$\n\
  /SERVICE=1$\tυπηρεσία αποδείξεων μέσω HTTP· στη θέση του 1 μπορούν να μπουν επιλογές του mirvane-service$\r$\n\
  /DOWNGRADE$\tαντικατάσταση νεότερης έκδοσης$\r$\n\
  /LOG=FILE$\tαρχείο καταγραφής, αντί για $TEMP\MirvaneEFT-setup.log$\r$\n\
  /D=FOLDER$\tφάκελος εγκατάστασης· τελευταία παράμετρος, χωρίς εισαγωγικά$\r$\n$\r$\n\
  Κωδικοί εξόδου: 0 εγκαταστάθηκε, 1 ακύρωση, 2 δεν γράφεται ένα αρχείο, 3 ή 4 δεν καταχωρίζεται το DLL των 32 ή 64 bit, \
  5 δεν δίνεται πρόσβαση στις καταγραφές, 6 λάθος παράμετρος, 7 υπάρχει νεότερη έκδοση, 8 υπάρχει εγκατάσταση για όλους, \
  9 η υπηρεσία δεν λειτουργεί, \
  740 χρειάζεται διαχειριστής, 3010 εγκαταστάθηκε ενώ χρησιμοποιούνται παλιά αρχεία"
