; The installer. package/setup.sh defines VERSION, OUTPUT, FILES (what to install and to remove), PUBLISHER,
; CONTACT, and SIGN.
Unicode true
SetCompressor /SOLID lzma
; A file that cannot be written ends the installation.
AllowSkipFiles off
ManifestSupportedOS all
ManifestDPIAware true
RequestExecutionLevel highest
Name "MirvaneEFT ${VERSION}"
BrandingText "MirvaneEFT ${VERSION}"
OutFile "${OUTPUT}"
!ifdef SIGN
  !uninstfinalize '"${SIGN}" "%1"'
!endif

!include MUI2.nsh
!include nsDialogs.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include WordFunc.nsh
!include x64.nsh

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\MirvaneEFT"
!define MENU "$SMPROGRAMS\MirvaneEFT"
; Exit codes of a silent run. 0 is success; 1 and 2 are NSIS's own: the user cancelled, a file could not be written.
!define NOT_REGISTERED_32 3
!define NOT_REGISTERED_64 4
!define RECORDS_NOT_SHARED 5
!define WRONG_SWITCH 6
!define NEWER_IS_INSTALLED 7
!define INSTALLED_FOR_EVERYBODY 8
!define SERVICE_NOT_INSTALLED 9
!define NEEDS_ADMINISTRATOR 740
!define OLD_FILES_IN_USE 3010

Var Account        ; the user's account type, as Windows calls it: Admin, Power, User, Guest
Var ForEverybody   ; 1, or 0 for the current user alone
Var MachineFolder  ; where it is installed for everybody, or nothing
Var UserFolder     ; where it is installed for the current user, or nothing
Var FormerFolder   ; the one of these that is upgraded
Var FormerVersion
Var Check          ; mirvane-check as it was installed

!include "${__FILEDIR__}/setup_switches.nsh"
!include "${__FILEDIR__}/setup_files.nsh"
!include "${__FILEDIR__}/setup_service.nsh"
!include "${__FILEDIR__}/setup_pages.nsh"
!include "${__FILEDIR__}/setup_texts.nsh"

VIProductVersion "${VERSION}.0"
!macro properties LANGUAGE DESCRIPTION
  VIAddVersionKey /LANG=${LANGUAGE} "CompanyName" "${PUBLISHER}"
  VIAddVersionKey /LANG=${LANGUAGE} "FileDescription" "${DESCRIPTION}"
  VIAddVersionKey /LANG=${LANGUAGE} "FileVersion" "${VERSION}"
  VIAddVersionKey /LANG=${LANGUAGE} "LegalCopyright" "${COPYRIGHT}"
  VIAddVersionKey /LANG=${LANGUAGE} "ProductName" "MirvaneEFT"
  VIAddVersionKey /LANG=${LANGUAGE} "ProductVersion" "${VERSION}"
!macroend
!insertmacro properties ${LANG_ENGLISH} "MirvaneEFT setup"
!insertmacro properties ${LANG_GREEK} "Εγκατάσταση του MirvaneEFT"

; ---- For whom, and where

!macro use_native_registry
  ${If} ${RunningX64}
    SetRegView 64
  ${EndIf}
!macroend

; installed_folder ROOT VARIABLE: where an installation is that can be removed.
!macro installed_folder ROOT VARIABLE
  ReadRegStr ${VARIABLE} ${ROOT} "${UNINSTALL_KEY}" "InstallLocation"
  ${IfNot} ${FileExists} "${VARIABLE}\uninstall.exe"
    StrCpy ${VARIABLE} ""
  ${EndIf}
!macroend

; The given folder, or that of the present installation, or the default.
Function set_scope
  ${If} $ForEverybody = 1
    SetShellVarContext all
    StrCpy $FormerFolder $MachineFolder
    StrCpy $0 "$PROGRAMFILES"
    ${If} ${RunningX64}
      StrCpy $0 "$PROGRAMFILES64"
    ${EndIf}
  ${Else}
    SetShellVarContext current
    StrCpy $FormerFolder $UserFolder
    StrCpy $0 "$LOCALAPPDATA\Programs"
  ${EndIf}
  StrCpy $FormerVersion ""
  ${If} $FormerFolder != ""
    ReadRegStr $FormerVersion SHCTX "${UNINSTALL_KEY}" "DisplayVersion"
  ${EndIf}
  ${If} $GivenFolder != ""
    StrCpy $INSTDIR $GivenFolder
  ${ElseIf} $FormerFolder != ""
    StrCpy $INSTDIR $FormerFolder
  ${Else}
    StrCpy $INSTDIR "$0\MirvaneEFT"
  ${EndIf}
FunctionEnd

Function .onInit
  !insertmacro use_native_registry
  UserInfo::GetAccountType
  Pop $Account
  Call read_switches
  !insertmacro installed_folder HKLM $MachineFolder
  !insertmacro installed_folder HKCU $UserFolder

  ; An existing installation keeps its scope.
  StrCpy $ForEverybody 0
  ${If} $Account == "Admin"
    ${If} $MachineFolder != ""
    ${OrIf} $UserFolder == ""
      StrCpy $ForEverybody 1
    ${EndIf}
  ${EndIf}
  ${If} $GivenScope == "all"
    ${If} $Account != "Admin"
      !insertmacro refuse ${NEEDS_ADMINISTRATOR} "$(ADMINISTRATOR)"
    ${EndIf}
    StrCpy $ForEverybody 1
  ${ElseIf} $GivenScope == "current"
    StrCpy $ForEverybody 0
  ${EndIf}
  ; The user's own would hide the one for everybody and become outdated.
  ${If} $ForEverybody = 0
  ${AndIf} $MachineFolder != ""
    ${If} $Account != "Admin"
      !insertmacro refuse ${NEEDS_ADMINISTRATOR} "$(UPGRADE_BY_ADMINISTRATOR)"
    ${EndIf}
    !insertmacro refuse ${INSTALLED_FOR_EVERYBODY} "$(IS_FOR_EVERYBODY)"
  ${EndIf}
  ${If} $ServiceOptions != ""
  ${AndIf} $ForEverybody = 0
    !insertmacro refuse ${WRONG_SWITCH} "$(SERVICE_FOR_EVERYBODY)"
  ${EndIf}
  Call set_scope

  ${VersionCompare} "$FormerVersion" "${VERSION}" $0
  ${If} $0 = 1
  ${AndIf} $Downgrade != 1
    ${If} ${Silent}
      !insertmacro refuse ${NEWER_IS_INSTALLED} "$(IS_NEWER)"
    ${EndIf}
    MessageBox MB_YESNO|MB_ICONEXCLAMATION|MB_DEFBUTTON2 "$(IS_NEWER) $(REPLACE_NEWER)" IDYES +2
    Quit
  ${EndIf}
FunctionEnd

!include "${FILES}"

; ---- Registration: each DLL by the regsvr32 of its own bitness.

; regsvr32 ARGUMENTS SYSTEM FOLDER: leaves the outcome in $0.
!macro regsvr32 ARGUMENTS SYSTEM FOLDER
  ; Remains if regsvr32 cannot be started, for example because of a policy.
  StrCpy $0 "not started"
  ${If} $ForEverybody = 1
    ExecWait '"${SYSTEM}\regsvr32.exe" /s ${ARGUMENTS} "$INSTDIR\${FOLDER}\MirvaneEFT.dll"' $0
  ${Else}
    ExecWait '"${SYSTEM}\regsvr32.exe" /s ${ARGUMENTS} /n /i:user "$INSTDIR\${FOLDER}\MirvaneEFT.dll"' $0
  ${EndIf}
!macroend

!macro not_registered FOLDER CODE
  !insertmacro log "$(REFUSED) $INSTDIR\${FOLDER}\MirvaneEFT.dll ($0)"
  SetErrorLevel ${CODE}
  Abort "$(REFUSED) $INSTDIR\${FOLDER}\MirvaneEFT.dll ($0)"
!macroend

Function register
  !insertmacro regsvr32 "" "$SYSDIR" win32
  ${If} $0 != 0
    !insertmacro not_registered win32 ${NOT_REGISTERED_32}
  ${EndIf}
  ${If} ${RunningX64}
    !insertmacro regsvr32 "" "$WINDIR\sysnative" win64
    ${If} $0 != 0
      ; On ARM, 64-bit programs may be of another architecture than the DLL.
      ReadEnvStr $1 PROCESSOR_ARCHITEW6432
      ${If} $1 != "ARM64"
        !insertmacro not_registered win64 ${NOT_REGISTERED_64}
      ${EndIf}
      DetailPrint "$(ONLY_32_BIT)"
      !insertmacro log "$(ONLY_32_BIT) ($0)"
    ${EndIf}
  ${EndIf}
FunctionEnd

; Lets the till's users write here, which a program folder does not allow. S-1-5-32-545 is their group in every language.
!macro share_records FOLDER
  CreateDirectory "$INSTDIR\${FOLDER}\records"
  ${If} $ForEverybody = 1
    nsExec::Exec '"$SYSDIR\icacls.exe" "$INSTDIR\${FOLDER}\records" /grant *S-1-5-32-545:(OI)(CI)M'
    Pop $0
    ${If} $0 != 0
      SetErrorLevel ${RECORDS_NOT_SHARED}
      DetailPrint "$(NOT_SHARED) $INSTDIR\${FOLDER}\records ($0)"
      !insertmacro log "$(NOT_SHARED) $INSTDIR\${FOLDER}\records ($0)"
    ${EndIf}
  ${EndIf}
!macroend

; ---- Installing

; take_away FOLDER: removes another installation, which this one replaces.
!macro take_away FOLDER
  ${If} "${FOLDER}" != ""
    ExecWait '"${FOLDER}\uninstall.exe" /S _?=${FOLDER}' $0
    !insertmacro log "uninstalled ${FOLDER} ($0)"
    Delete "${FOLDER}\uninstall.exe"
    RMDir "${FOLDER}"
    ${If} $0 = ${OLD_FILES_IN_USE}
      StrCpy $InUseText "$(IN_USE)"
    ${EndIf}
  ${EndIf}
!macroend

!macro write_menu
  CreateDirectory "${MENU}"
  SetOutPath "$INSTDIR"
  CreateShortcut "${MENU}\$(MENU_EMULATOR).lnk" "$INSTDIR\emulator\mirvane-emulator.exe"
  CreateShortcut "${MENU}\$(MENU_CHECK).lnk" "$Check"
  CreateShortcut "${MENU}\$(MENU_GUIDES).lnk" "$INSTDIR\index.html"
  CreateShortcut "${MENU}\$(MENU_UNINSTALL).lnk" "$INSTDIR\uninstall.exe"
!macroend

!macro write_entry
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "MirvaneEFT"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\emulator\mirvane-emulator.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
  !if "${CONTACT}" != ""
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "Contact" "${CONTACT}"
  !endif
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" ${KILOBYTES}
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
!macroend

Section
  !insertmacro log "installing in $INSTDIR"
  StrCpy $Check "$INSTDIR\win32\mirvane-check.exe"
  ${If} ${RunningX64}
    StrCpy $Check "$INSTDIR\win64\mirvane-check.exe"
  ${EndIf}
  ; Removes the one for the current user, which would hide the one for everybody. In the same folder it is removed first;
  ; otherwise the new files would be removed with it.
  ${If} $ForEverybody = 0
    StrCpy $UserFolder ""
  ${EndIf}
  ; A folder may have two names.
  GetFullPathName /SHORT $0 $INSTDIR
  GetFullPathName /SHORT $1 $FormerFolder
  GetFullPathName /SHORT $2 $UserFolder
  ${If} $0 == $1
    StrCpy $FormerFolder ""
  ${EndIf}
  ${If} $0 == $2
    !insertmacro take_away $UserFolder
    StrCpy $UserFolder ""
  ${EndIf}

  !insertmacro remove_set_aside
  ${If} $ForEverybody = 1
    Call pause_services
  ${EndIf}
  !insertmacro install_files
  SetOutPath "$INSTDIR"
  StrCpy $Writing "$INSTDIR\uninstall.exe"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  StrCpy $Writing ""

  !insertmacro take_away $FormerFolder
  !insertmacro take_away $UserFolder
  !insertmacro write_entry
  RMDir /r "${MENU}"
  !insertmacro write_menu
  Call register
  ${If} $InUseText != ""
    DetailPrint "$InUseText"
    !insertmacro log "$InUseText"
    SetErrorLevel ${OLD_FILES_IN_USE}
  ${EndIf}
  ${If} $Records = 1
    !insertmacro share_records win32
    !insertmacro share_records win64
  ${EndIf}
  Call start_services
  !insertmacro log "$(FINISHED)"
SectionEnd

Function .onInstFailed
  ${If} $Writing != ""
    !insertmacro log "$(UNWRITTEN) $Writing (2)"
    SetErrorLevel 2
  ${EndIf}
FunctionEnd

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
      SetErrorLevel ${NEEDS_ADMINISTRATOR}
      MessageBox MB_OK|MB_ICONSTOP "$(ADMINISTRATOR)" /SD IDOK
      Quit
    ${EndIf}
  ${EndIf}
FunctionEnd

Section Uninstall
  ${If} $ForEverybody = 1
    Call un.remove_services
  ${EndIf}
  !insertmacro regsvr32 /u "$SYSDIR" win32
  ${If} ${RunningX64}
    !insertmacro regsvr32 /u "$WINDIR\sysnative" win64
  ${EndIf}
  !insertmacro remove_set_aside
  Delete "$INSTDIR\uninstall.exe"
  ; Removed only if it holds no records.
  RMDir "$INSTDIR\win32\records"
  RMDir "$INSTDIR\win64\records"
  !insertmacro remove_files
  RMDir /r "${MENU}"
  DeleteRegKey SHCTX "${UNINSTALL_KEY}"
  ${If} $InUseText != ""
    RMDir /REBOOTOK "$INSTDIR"
    MessageBox MB_OK|MB_ICONINFORMATION "$InUseText" /SD IDOK
    SetErrorLevel ${OLD_FILES_IN_USE}
  ${EndIf}
SectionEnd
