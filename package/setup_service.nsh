; mirvane-service as a Windows service. Its program keeps the list of services right; what Setup adds is which of them run
; this installation's program, however many were installed by hand, and that they pause while their program is replaced.

!define SERVICES "System\CurrentControlSet\Services"

Var ServiceProgram   ; mirvane-service as it is installed
Var Paused           ; services to be started again

; service_functions "" or "un.": defines find_services, which leaves the names of this installation's services on the
; stack, and an empty one below them; and await_end, which waits for the end of a service that has just stopped.
!macro service_functions UN
Function ${UN}find_services
  StrCpy $ServiceProgram "$INSTDIR\win32\mirvane-service.exe"
  ${If} ${RunningX64}
    StrCpy $ServiceProgram "$INSTDIR\win64\mirvane-service.exe"
  ${EndIf}
  Push ""
  StrLen $3 '"$ServiceProgram"'
  StrCpy $0 0
  ${Do}
    EnumRegKey $1 HKLM "${SERVICES}" $0
    ${If} $1 == ""
      ${ExitDo}
    ${EndIf}
    ReadRegStr $2 HKLM "${SERVICES}\$1" "ImagePath"
    StrCpy $2 $2 $3
    ${If} $2 == '"$INSTDIR\win32\mirvane-service.exe"'
    ${OrIf} $2 == '"$INSTDIR\win64\mirvane-service.exe"'
      Push $1
    ${EndIf}
    IntOp $0 $0 + 1
  ${Loop}
FunctionEnd

; Windows keeps the file of a program that runs from being written.
Function ${UN}await_end
  ${For} $0 1 100
    ClearErrors
    FileOpen $1 "$ServiceProgram" a
    ${IfNot} ${Errors}
      FileClose $1
      ${ExitFor}
    ${EndIf}
    Sleep 100
  ${Next}
FunctionEnd
!macroend
!insertmacro service_functions ""
!insertmacro service_functions "un."

Function pause_services
  Call find_services
  ${Do}
    Pop $4
    ${If} $4 == ""
      ${ExitDo}
    ${EndIf}
    nsExec::Exec '"$SYSDIR\net.exe" stop "$4"'
    Pop $0
    ${If} $0 = 0
      StrCpy $Paused "$Paused $4"
      Call await_end
    ${EndIf}
  ${Loop}
FunctionEnd

Function start_services
  ${If} $Paused != ""
    nsExec::Exec '"$SYSDIR\cmd.exe" /c for %s in ($Paused) do net start %s'
    Pop $0
    !insertmacro log "started:$Paused ($0)"
  ${EndIf}
  ${If} $ServiceOptions == ""
    Return
  ${EndIf}
  ReadRegStr $0 HKLM "${SERVICES}\mirvane-service" "ImagePath"
  ${If} $0 != ""
    Return
  ${EndIf}
  ${If} $ServiceOptions == 1
    StrCpy $ServiceOptions ""
  ${EndIf}
  nsExec::ExecToStack '"$ServiceProgram" install $ServiceOptions'
  Pop $0
  Pop $1
  ${If} $0 != 0
    SetErrorLevel ${SERVICE_NOT_INSTALLED}
    DetailPrint "$(NO_SERVICE) $1"
  ${EndIf}
  !insertmacro log "$1 ($0)"
FunctionEnd

Function un.remove_services
  Call un.find_services
  ${Do}
    Pop $4
    ${If} $4 == ""
      ${ExitDo}
    ${EndIf}
    ExecWait '"$ServiceProgram" uninstall --service-name "$4"'
    Call un.await_end
  ${Loop}
FunctionEnd
