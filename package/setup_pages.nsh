; The pages. The first one shows what is installed and asks for whom; an upgrade asks no questions.

Var EverybodyButton
Var RecordsBox
Var ServiceBox
Var RegisterField
Var CheckBox

!define MUI_ICON "${__FILEDIR__}/mirvane.ico"
!define MUI_UNICON "${__FILEDIR__}/mirvane.ico"

Page custom first_page first_page_left
!define MUI_PAGE_CUSTOMFUNCTION_PRE skip_when_upgrading
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
; What the page reports needs no restart of Windows.
!define MUI_FINISHPAGE_NOREBOOTSUPPORT
!define MUI_FINISHPAGE_TEXT "$(FINISHED)$\r$\n$\r$\n$InUseText"
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_NOTCHECKED
!define MUI_FINISHPAGE_RUN_TEXT "$(START_EMULATOR)"
!define MUI_FINISHPAGE_RUN_FUNCTION start_emulator
!define MUI_FINISHPAGE_SHOWREADME
!define MUI_FINISHPAGE_SHOWREADME_TEXT "$(SHOW_GUIDES)"
!define MUI_FINISHPAGE_SHOWREADME_FUNCTION show_guides
!define MUI_PAGE_CUSTOMFUNCTION_SHOW add_check
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE start_check
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English
!insertmacro MUI_LANGUAGE Greek

Function first_page
  !insertmacro MUI_HEADER_TEXT "MirvaneEFT ${VERSION}" "$(WHAT_IT_IS)"
  nsDialogs::Create 1018
  Pop $0
  ${If} $FormerVersion == ""
    Call ask_for_whom
  ${Else}
    ${NSD_CreateLabel} 0 5u 100% 10u "$(UPGRADE)"
    Pop $0
    ${NSD_CreateLabel} 10u 22u 95% 20u "$INSTDIR"
    Pop $0
    ${NSD_CreateLabel} 0 50u 100% 40u "$(UPGRADE_MORE)"
    Pop $0
    GetDlgItem $0 $HWNDPARENT 1
    SendMessage $0 ${WM_SETTEXT} 0 "STR:$(^InstallBtn)"
  ${EndIf}
  nsDialogs::Show
FunctionEnd

Function ask_for_whom
  ${NSD_CreateLabel} 0 2u 100% 10u "$(WHO)"
  Pop $0
  ${NSD_CreateRadioButton} 8u 16u 95% 12u "$(EVERYBODY)"
  Pop $EverybodyButton
  ${NSD_CreateRadioButton} 8u 56u 95% 20u "$(JUST_ME)"
  Pop $0
  ${If} $ForEverybody = 1
    StrCpy $0 $EverybodyButton
  ${EndIf}
  ${NSD_Check} $0
  ${If} $Account != "Admin"
    EnableWindow $EverybodyButton 0
    ${NSD_CreateLabel} 20u 30u 90% 22u "$(HOW_FOR_EVERYBODY)"
    Pop $0
  ${EndIf}
  ${NSD_CreateCheckBox} 0 92u 100% 20u "$(KEEP_RECORDS)"
  Pop $RecordsBox
  ${NSD_SetState} $RecordsBox $Records
  ${NSD_CreateCheckBox} 0 112u 100% 12u "$(SERVICE)"
  Pop $ServiceBox
  ${NSD_CreateText} 12u 126u 110u 12u "127.0.0.1:9100"
  Pop $RegisterField
  ${If} $Account != "Admin"
    EnableWindow $ServiceBox 0
    EnableWindow $RegisterField 0
  ${EndIf}
FunctionEnd

Function first_page_left
  ${If} $FormerVersion == ""
    ${NSD_GetState} $EverybodyButton $ForEverybody
    ${NSD_GetState} $RecordsBox $Records
    ${NSD_GetState} $ServiceBox $0
    ${NSD_GetText} $RegisterField $1
    StrCpy $ServiceOptions ""
    ${If} $0 = 1
      ${If} $ForEverybody = 0
        MessageBox MB_OK|MB_ICONEXCLAMATION "$(SERVICE_FOR_EVERYBODY)"
        Abort
      ${EndIf}
      StrCpy $ServiceOptions '--register "$1"'
    ${EndIf}
    Call set_scope
  ${EndIf}
FunctionEnd

Function skip_when_upgrading
  ${If} $FormerVersion != ""
    Abort
  ${EndIf}
FunctionEnd

; open FILE: through the user's own desktop, so without the installer's rights.
!macro open FILE
  Exec '"$WINDIR\explorer.exe" "${FILE}"'
!macroend

Function show_guides
  !insertmacro open "$INSTDIR\index.html"
FunctionEnd

Function start_emulator
  !insertmacro open "$INSTDIR\emulator\mirvane-emulator.exe"
FunctionEnd

Function add_check
  ${NSD_CreateCheckbox} 120u 130u 195u 10u "$(START_CHECK)"
  Pop $CheckBox
  SetCtlColors $CheckBox "" "ffffff"
FunctionEnd

Function start_check
  ${NSD_GetState} $CheckBox $0
  ${If} $0 = 1
    !insertmacro open "$Check"
  ${EndIf}
FunctionEnd
