; Files that a program may be using. A program that runs can be renamed and not be deleted: it goes on with the old file
; under another name, and the new one takes its place at once. A file that cannot even be renamed, as a scanner holds it,
; is replaced at the next start of Windows, which takes an administrator.
;
; Nothing is ever left to the next start of Windows under a file's real name: by then, another version may stand there.

Var Writing    ; the file that is being written
Var InUseText  ; what to say when a program held an old file

; set_aside "" or "un.": defines the function that takes the file named in $0 out of the way. $1 is then "gone", "renamed"
; or "held".
!macro set_aside UN
Function ${UN}set_aside
  StrCpy $1 "gone"
  ${If} ${FileExists} $0
    GetTempFileName $2 "$INSTDIR"
    Delete "$2"
    ClearErrors
    Rename "$0" "$2.old"
    ${If} ${Errors}
      StrCpy $1 "held"
      Return
    ${EndIf}
    Delete "$2.old"
    ${If} ${Errors}
      StrCpy $1 "renamed"
      Delete /REBOOTOK "$2.old"
    ${EndIf}
  ${EndIf}
FunctionEnd
!macroend
!insertmacro set_aside ""
!insertmacro set_aside "un."

; install_file FILE NAME
!macro install_file FILE NAME
  StrCpy $Writing "$OUTDIR\${NAME}"
  File "/oname=${NAME}" "${FILE}"
!macroend

; install_program FILE NAME: a file that Windows locks while it runs. The old one stays until the new one is there.
!macro install_program FILE NAME
  StrCpy $Writing "$OUTDIR\${NAME}"
  GetTempFileName $3 "$INSTDIR"
  Delete "$3"
  StrCpy $3 "$3.new"
  File "/oname=$3" "${FILE}"
  Call put_in_place
!macroend

; Puts the file $3 where $Writing says.
Function put_in_place
  StrCpy $0 $Writing
  Call set_aside
  ${If} $1 == "held"
    ${If} $Account != "Admin"
      Delete "$3"
      Abort "$(HELD) $Writing"
    ${EndIf}
    StrCpy $InUseText "$(AFTER_RESTART)"
    Rename /REBOOTOK "$3" "$Writing"
    Return
  ${EndIf}
  ${If} $1 == "renamed"
  ${AndIf} $InUseText == ""
    StrCpy $InUseText "$(IN_USE)"
  ${EndIf}
  ClearErrors
  Rename "$3" "$Writing"
  ${If} ${Errors}
    Abort "$(UNWRITTEN) $Writing"
  ${EndIf}
FunctionEnd

; remove_program FILE
!macro remove_program FILE
  StrCpy $0 "${FILE}"
  Call un.set_aside
  ${If} $1 == "held"
    StrCpy $InUseText "$(STAYS) $0"
  ${ElseIf} $1 == "renamed"
  ${AndIf} $InUseText == ""
    StrCpy $InUseText "$(GONE_AFTER_RESTART)"
  ${EndIf}
!macroend

; Waiting for the next start of Windows, of this installation or of one before it.
!macro remove_set_aside
  Delete "$INSTDIR\*.tmp.old"
  Delete "$INSTDIR\*.tmp.new"
!macroend
