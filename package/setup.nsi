; The installer. package/setup.sh gives it VERSION, OUTPUT, FILES (what to install, and what to take away), and SIGN.
Unicode true
SetCompressor /SOLID lzma
ManifestSupportedOS all
ManifestDPIAware true
RequestExecutionLevel highest
Name "MirvaneEFT"
BrandingText "MirvaneEFT ${VERSION}"
OutFile "${OUTPUT}"
!ifdef SIGN
  !uninstfinalize '"${SIGN}" "%1"'
!endif

!include MUI2.nsh
!include nsDialogs.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include x64.nsh

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\MirvaneEFT"
; What a program that waits for a silent run gets to know; 0 is success, 1 and 2 are the installer's own.
!define NOT_WRITTEN 2
!define NOT_REGISTERED_32 3
!define NOT_REGISTERED_64 4
!define RECORDS_NOT_SHARED 5
!define NEEDS_ADMINISTRATOR 740
!define OLD_FILES_IN_USE 3010

Var Account       ; Windows' word for what the user may do: Admin, Power, User, Guest
Var ForEverybody  ; 1, or 0 for the current user alone
Var Records       ; 1 makes the folders that switch the flight recorder on
Var GivenFolder   ; what /D= said
Var InUseText     ; what to say when a program held an old file
Var EverybodyButton
Var RecordsBox

; Windows need not be started anew for what the page tells.
!define MUI_FINISHPAGE_NOREBOOTSUPPORT
!define MUI_FINISHPAGE_SHOWREADME "$INSTDIR\index.html"
!define MUI_FINISHPAGE_SHOWREADME_TEXT "$(SHOW_GUIDES)"
!define MUI_FINISHPAGE_TEXT "$(FINISHED)$\r$\n$\r$\n$InUseText"
Page custom choose choose_done
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English
!insertmacro MUI_LANGUAGE Greek

; text NAME ENGLISH GREEK
!macro text NAME ENGLISH GREEK
  LangString ${NAME} ${LANG_ENGLISH} "${ENGLISH}"
  LangString ${NAME} ${LANG_GREEK} "${GREEK}"
!macroend
!insertmacro text CHOOSE "For whom" "Για ποιον"
!insertmacro text CHOOSE_MORE "Who shall find the component on this machine." "Ποιος θα βρίσκει το στοιχείο σε αυτόν τον υπολογιστή."
!insertmacro text EVERYBODY "For &everybody" "Για &όλους"
!insertmacro text JUST_ME "For &me only (programs that run as administrator, and services, do not see it)" \
  "&Μόνο για μένα (δεν το βλέπουν υπηρεσίες και προγράμματα που τρέχουν ως διαχειριστής)"
!insertmacro text KEEP_RECORDS "Keep &records of what is said to the register, for finding faults" \
  "Να τηρούνται αρχεία &καταγραφής της επικοινωνίας με την ταμειακή, για εντοπισμό βλαβών"
!insertmacro text SHOW_GUIDES "Show the guides" "Εμφάνιση των οδηγών"
!insertmacro text FINISHED "MirvaneEFT ${VERSION} is installed." "Το MirvaneEFT ${VERSION} εγκαταστάθηκε."
!insertmacro text IN_USE "A program is using the old files. It has the new ones when it is started next." \
  "Κάποιο πρόγραμμα χρησιμοποιεί τα παλιά αρχεία. Θα έχει τα νέα όταν ξεκινήσει την επόμενη φορά."
!insertmacro text AFTER_RESTART "A program is using the old files. The new ones take their place when Windows starts next." \
  "Κάποιο πρόγραμμα χρησιμοποιεί τα παλιά αρχεία. Τα νέα θα μπουν στη θέση τους στην επόμενη εκκίνηση των Windows."
!insertmacro text HELD "A program is using" "Κάποιο πρόγραμμα χρησιμοποιεί το"
!insertmacro text STAYS_IN_USE "A program is using the files. They go when Windows starts next." \
  "Κάποιο πρόγραμμα χρησιμοποιεί τα αρχεία. Θα διαγραφούν στην επόμενη εκκίνηση των Windows."
!insertmacro text REFUSED "Windows does not register the component:" "Τα Windows δεν καταχωρίζουν το στοιχείο:"
!insertmacro text NOT_SHARED "The till's users cannot write to the records folder:" \
  "Οι χρήστες του ταμείου δεν μπορούν να γράψουν στον φάκελο καταγραφής:"
!insertmacro text ADMINISTRATOR "This takes an administrator." "Χρειάζεται διαχειριστής."

VIProductVersion "${VERSION}.0"
; There is no line about copyright.
!pragma warning disable 9100
!macro properties LANGUAGE DESCRIPTION
  VIAddVersionKey /LANG=${LANGUAGE} "FileDescription" "${DESCRIPTION}"
  VIAddVersionKey /LANG=${LANGUAGE} "FileVersion" "${VERSION}"
  VIAddVersionKey /LANG=${LANGUAGE} "ProductName" "MirvaneEFT"
  VIAddVersionKey /LANG=${LANGUAGE} "ProductVersion" "${VERSION}"
!macroend
!insertmacro properties ${LANG_ENGLISH} "MirvaneEFT setup"
!insertmacro properties ${LANG_GREEK} "Εγκατάσταση του MirvaneEFT"

; ---- For whom, and where

!macro refuse CODE TEXT
  SetErrorLevel ${CODE}
  MessageBox MB_OK|MB_ICONSTOP "${TEXT}" /SD IDOK
  Quit
!macroend

!macro use_native_registry
  ${If} ${RunningX64}
    SetRegView 64
  ${EndIf}
!macroend

; The folder that was given, else the one of the installation that is there, else the usual one.
Function set_scope
  ${If} $ForEverybody = 1
    SetShellVarContext all
    StrCpy $0 "$PROGRAMFILES"
    ${If} ${RunningX64}
      StrCpy $0 "$PROGRAMFILES64"
    ${EndIf}
  ${Else}
    SetShellVarContext current
    StrCpy $0 "$LOCALAPPDATA\Programs"
  ${EndIf}
  ReadRegStr $INSTDIR SHCTX "${UNINSTALL_KEY}" "InstallLocation"
  ${If} $GivenFolder != ""
    StrCpy $INSTDIR "$GivenFolder"
  ${ElseIf} $INSTDIR == ""
    StrCpy $INSTDIR "$0\MirvaneEFT"
  ${EndIf}
FunctionEnd

Function .onInit
  !insertmacro use_native_registry
  StrCpy $GivenFolder "$INSTDIR"
  UserInfo::GetAccountType
  Pop $Account
  ${GetParameters} $0

  ; Who has it already has it again.
  ReadRegStr $1 HKLM "${UNINSTALL_KEY}" "InstallLocation"
  ReadRegStr $2 HKCU "${UNINSTALL_KEY}" "InstallLocation"
  ${If} $Account == "Admin"
    StrCpy $ForEverybody 1
    ${If} $1 == ""
    ${AndIf} $2 != ""
      StrCpy $ForEverybody 0
    ${EndIf}
  ${EndIf}
  ClearErrors
  ${GetOptions} $0 "/CURRENTUSER" $1
  ${IfNot} ${Errors}
    StrCpy $ForEverybody 0
  ${EndIf}
  ClearErrors
  ${GetOptions} $0 "/ALLUSERS" $1
  ${IfNot} ${Errors}
    ${If} $Account != "Admin"
      !insertmacro refuse ${NEEDS_ADMINISTRATOR} "$(ADMINISTRATOR)"
    ${EndIf}
    StrCpy $ForEverybody 1
  ${EndIf}
  ${GetOptions} $0 "/RECORDS=" $Records
  Call set_scope
FunctionEnd

Function choose
  !insertmacro MUI_HEADER_TEXT "$(CHOOSE)" "$(CHOOSE_MORE)"
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateRadioButton} 0 10u 100% 12u "$(EVERYBODY)"
  Pop $EverybodyButton
  ${NSD_CreateRadioButton} 0 30u 100% 20u "$(JUST_ME)"
  Pop $0
  ${If} $ForEverybody = 1
    StrCpy $0 $EverybodyButton
  ${EndIf}
  ${NSD_Check} $0
  ${If} $Account != "Admin"
    EnableWindow $EverybodyButton 0
  ${EndIf}
  ${NSD_CreateCheckBox} 0 70u 100% 20u "$(KEEP_RECORDS)"
  Pop $RecordsBox
  ${NSD_SetState} $RecordsBox $Records
  nsDialogs::Show
FunctionEnd

Function choose_done
  ${NSD_GetState} $EverybodyButton $ForEverybody
  ${NSD_GetState} $RecordsBox $Records
  Call set_scope
FunctionEnd

; ---- Files

; A program that runs can be renamed and not be deleted: it goes on with the old file, and the new one takes its place at
; once. What is left of the old one goes at the next installation, or at the next start of Windows. A file that cannot
; even be renamed is replaced at the next start of Windows, which takes an administrator. Takes the file from the stack;
; $0 is then where the new one goes.
Function step_aside
  Pop $0
  ClearErrors
  Delete "$0"
  ${IfNot} ${Errors}
    Return
  ${EndIf}
  GetTempFileName $1 "$OUTDIR"
  Delete "$1"
  ClearErrors
  Rename "$0" "$1.old"
  ${IfNot} ${Errors}
    StrCpy $InUseText "$(IN_USE)"
    Delete /REBOOTOK "$1.old"
  ${ElseIf} $Account == "Admin"
    StrCpy $InUseText "$(AFTER_RESTART)"
    StrCpy $0 "$1"
  ${Else}
    SetErrorLevel ${NOT_WRITTEN}
    Abort "$(HELD) $0"
  ${EndIf}
FunctionEnd

; install_program FILE NAME: a file that Windows locks while it runs.
!macro install_program FILE NAME
  Push "$OUTDIR\${NAME}"
  Call step_aside
  File "/oname=$0" "${FILE}"
  ${If} $0 != "$OUTDIR\${NAME}"
    Rename /REBOOTOK "$0" "$OUTDIR\${NAME}"
  ${EndIf}
!macroend

; remove_program FILE
!macro remove_program FILE
  ClearErrors
  Delete "${FILE}"
  ${If} ${Errors}
    Delete /REBOOTOK "${FILE}"
    StrCpy $InUseText "$(STAYS_IN_USE)"
  ${EndIf}
!macroend

!include "${FILES}"

; ---- Registration: each DLL by the regsvr32 of its own bitness.

; regsvr32 ARGUMENTS SYSTEM FOLDER: leaves the outcome in $0.
!macro regsvr32 ARGUMENTS SYSTEM FOLDER
  ${If} $ForEverybody = 1
    ExecWait '"${SYSTEM}\regsvr32.exe" /s ${ARGUMENTS} "$INSTDIR\${FOLDER}\MirvaneEFT.dll"' $0
  ${Else}
    ExecWait '"${SYSTEM}\regsvr32.exe" /s ${ARGUMENTS} /n /i:user "$INSTDIR\${FOLDER}\MirvaneEFT.dll"' $0
  ${EndIf}
!macroend

!macro register SYSTEM FOLDER CODE
  !insertmacro regsvr32 "" "${SYSTEM}" "${FOLDER}"
  ${If} $0 <> 0
    SetErrorLevel ${CODE}
    Abort "$(REFUSED) $INSTDIR\${FOLDER}\MirvaneEFT.dll ($0)"
  ${EndIf}
!macroend

; The till's users, who may not write in a program folder, may here; S-1-5-32-545 is their group in every language.
!macro share_records FOLDER
  CreateDirectory "$INSTDIR\${FOLDER}\records"
  ${If} $ForEverybody = 1
    nsExec::Exec '"$SYSDIR\icacls.exe" "$INSTDIR\${FOLDER}\records" /grant *S-1-5-32-545:(OI)(CI)M'
    Pop $0
    ${If} $0 != 0
      SetErrorLevel ${RECORDS_NOT_SHARED}
      DetailPrint "$(NOT_SHARED) $INSTDIR\${FOLDER}\records ($0)"
    ${EndIf}
  ${EndIf}
!macroend

Section
  Delete "$INSTDIR\emulator\*.old"
  Delete "$INSTDIR\win32\*.old"
  Delete "$INSTDIR\win64\*.old"
  !insertmacro install_files
  SetOutPath "$INSTDIR"
  WriteUninstaller "$INSTDIR\uninstall.exe"

  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "MirvaneEFT"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\emulator\mirvane-emulator.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1

  !insertmacro register "$SYSDIR" win32 ${NOT_REGISTERED_32}
  ${If} ${RunningX64}
    !insertmacro register "$WINDIR\sysnative" win64 ${NOT_REGISTERED_64}
  ${EndIf}
  ${If} $InUseText != ""
    DetailPrint "$InUseText"
    SetErrorLevel ${OLD_FILES_IN_USE}
  ${EndIf}
  ${If} $Records = 1
    !insertmacro share_records win32
    !insertmacro share_records win64
  ${EndIf}
SectionEnd

; ---- Uninstalling: everything that was installed, and nothing else.

Function un.onInit
  !insertmacro use_native_registry
  StrCpy $ForEverybody 1
  SetShellVarContext all
  ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "InstallLocation"
  ${If} $0 == $INSTDIR
    StrCpy $ForEverybody 0
    SetShellVarContext current
  ${Else}
    UserInfo::GetAccountType
    Pop $Account
    ${If} $Account != "Admin"
      !insertmacro refuse ${NEEDS_ADMINISTRATOR} "$(ADMINISTRATOR)"
    ${EndIf}
  ${EndIf}
FunctionEnd

Section Uninstall
  !insertmacro regsvr32 /u "$SYSDIR" win32
  ${If} ${RunningX64}
    !insertmacro regsvr32 /u "$WINDIR\sysnative" win64
  ${EndIf}
  Delete "$INSTDIR\emulator\*.old"
  Delete "$INSTDIR\win32\*.old"
  Delete "$INSTDIR\win64\*.old"
  Delete "$INSTDIR\uninstall.exe"
  ; Goes when no record was kept.
  RMDir "$INSTDIR\win32\records"
  RMDir "$INSTDIR\win64\records"
  !insertmacro remove_files
  DeleteRegKey SHCTX "${UNINSTALL_KEY}"
  ${If} $InUseText != ""
    MessageBox MB_OK|MB_ICONINFORMATION "$InUseText" /SD IDOK
    SetErrorLevel ${OLD_FILES_IN_USE}
  ${EndIf}
SectionEnd
