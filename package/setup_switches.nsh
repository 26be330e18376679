; The command line and the log. NSIS passes over switches that it does not know; a silent installation that was asked for
; something else must not look like a success.

Var GivenFolder   ; what /D= said
Var GivenScope    ; "all", "current", or nothing
Var Records       ; 1 makes the folders that switch the flight recorder on
Var ServiceOptions   ; what to install the service with, 1 for nothing special; or nothing, for no service
Var Downgrade     ; 1 replaces a newer version
Var LogFile
Var Log           ; its handle
Var Wrong         ; why the command line cannot be followed

; log TEXT
!macro log TEXT
  FileWriteUTF16LE $Log "${TEXT}$\r$\n"
!macroend

; refuse CODE TEXT: ends Setup before it has changed anything.
!macro refuse CODE TEXT
  !insertmacro log "${TEXT} (${CODE})"
  SetErrorLevel ${CODE}
  MessageBox MB_OK|MB_ICONSTOP "${TEXT}" /SD IDOK
  Quit
!macroend

Function read_switches
  Call parse_switches
  ${If} $LogFile != ""
    ClearErrors
    FileOpen $Log "$LogFile" w
    ${If} ${Errors}
      StrCpy $Wrong "$(WRONG_LOG) $LogFile"
      StrCpy $LogFile ""
    ${EndIf}
  ${EndIf}
  ; A second installer at the same time has none.
  ${If} $LogFile == ""
    FileOpen $Log "$TEMP\MirvaneEFT-setup.log" w
  ${EndIf}
  FileWriteUTF16LE /BOM $Log "MirvaneEFT ${VERSION}$\r$\n$CMDLINE$\r$\n"
  ${If} $Wrong == "?"
    MessageBox MB_OK|MB_ICONINFORMATION "$(USAGE)" /SD IDOK
    SetErrorLevel 0
    Quit
  ${ElseIf} $Wrong != ""
    !insertmacro refuse ${WRONG_SWITCH} "$Wrong"
  ${EndIf}
FunctionEnd

; $9 is what is still to be read, $8 the word that was.
Function parse_switches
  System::Call 'kernel32::GetCommandLineW()w.r9'
  Call next_word
  ${Do}
    ${Do}
      StrCpy $8 $9 1
      ${If} $8 != " "
        ${ExitDo}
      ${EndIf}
      StrCpy $9 $9 "" 1
    ${Loop}
    StrCpy $7 $9
    Call next_word
    ${If} $8 == ""
      ${ExitDo}
    ${EndIf}
    StrCpy $6 $8 3
    StrCpy $5 $8 5
    StrCpy $4 $8 9
    ${If} $6 == "/D="
      StrCpy $GivenFolder $7 "" 3
      Call check_folder
      ${ExitDo}
    ${ElseIf} $5 == "/LOG="
      StrCpy $LogFile $8 "" 5
    ${ElseIf} $4 == "/SERVICE="
      StrCpy $ServiceOptions $8 "" 9
      ${If} $ServiceOptions == 0
        StrCpy $ServiceOptions ""
      ${EndIf}
    ${ElseIf} $8 == "/S"
      SetSilent silent
    ${ElseIf} $8 == "/ALLUSERS"
    ${AndIf} $GivenScope != "current"
      StrCpy $GivenScope "all"
    ${ElseIf} $8 == "/CURRENTUSER"
    ${AndIf} $GivenScope != "all"
      StrCpy $GivenScope "current"
    ${ElseIf} $8 == "/ALLUSERS"
    ${OrIf} $8 == "/CURRENTUSER"
      StrCpy $Wrong "$(CONTRADICTION)"
    ${ElseIf} $8 == "/RECORDS=1"
    ${OrIf} $8 == "/RECORDS=0"
      StrCpy $Records $8 "" -1
    ${ElseIf} $8 == "/DOWNGRADE"
      StrCpy $Downgrade 1
    ${ElseIf} $8 == "/?"
      StrCpy $Wrong "?"
    ${ElseIf} $8 != "/NCRC"
    ${AndIf} $Wrong == ""
      StrCpy $Wrong "$(UNKNOWN_SWITCH) $8"
      ; Whoever means /S, as in /SILENT or /quiet, has nobody there to answer a box.
      StrCpy $0 $8 2
      ${If} $0 == "/S"
      ${OrIf} $0 == "/Q"
        SetSilent silent
      ${EndIf}
    ${EndIf}
  ${Loop}
FunctionEnd

; Takes a word off $9 and leaves it in $8, without its quotes. Within quotes a blank is part of the word.
Function next_word
  StrCpy $8 ""
  StrCpy $1 0
  ${Do}
    StrCpy $0 $9 1
    StrCpy $9 $9 "" 1
    ${If} $0 == '"'
      IntOp $1 1 - $1
    ${ElseIf} $0 == ""
    ${OrIf} $0$1 == " 0"
      ${ExitDo}
    ${Else}
      StrCpy $8 "$8$0"
    ${EndIf}
  ${Loop}
FunctionEnd

Function check_folder
  ${Do}
    StrCpy $0 $GivenFolder 1 -1
    ${If} $0 != " "
    ${AndIf} $0 != "\"
      ${ExitDo}
    ${EndIf}
    StrCpy $GivenFolder $GivenFolder -1
  ${Loop}
  StrCpy $0 $GivenFolder 2
  StrCpy $1 $GivenFolder 2 1
  ${If} $1 == ":\"
    StrCpy $0 $GivenFolder 3
    System::Call 'kernel32::GetFileAttributesW(wr0)i.r1'
  ${ElseIf} $0 != "\\"
    StrCpy $1 -1
  ${EndIf}
  ; NSIS takes characters out that no path has.
  StrCpy $INSTDIR $GivenFolder
  ${If} $1 == -1
  ${OrIf} $INSTDIR != $GivenFolder
    StrCpy $Wrong "$(WRONG_FOLDER) $GivenFolder"
  ${EndIf}
FunctionEnd
