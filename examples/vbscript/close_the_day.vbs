' Closing the day: X report, Z report, its journal. emulator: --fault "on A/ 4 code 134"
'
'   cscript //nologo close_the_day.vbs 127.0.0.1:9100
'
' The release has this file in UTF-16, which every Windows reads. In the sources it is in UTF-8, which script hosts
' misread: run a converted copy (iconv -f UTF-8 -t CP1253 on a Greek machine).
Option Explicit

Dim module, port, Result, Exresult, Suppress
Suppress = True

If WScript.Arguments.Count = 0 Then
  WScript.Echo "This closes the register's day. Give its port, for the emulator:" & vbCrLf & _
    "cscript //nologo """ & WScript.ScriptFullName & """ 127.0.0.1:9100"
  WScript.Quit 2
End If
port = WScript.Arguments(0)
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
WScript.Echo "connecting to " & port
module.Connect_ port, Result, Exresult, Suppress
Check "Connect_"

module.ItemSale "Καφές", 2, 1.80, 24, 1, Result, Exresult, Suppress
Check "ItemSale"
module.Payment 1, "ΜΕΤΡΗΤΑ", 0, 0, 0, Result, Exresult, Suppress
Check "Payment"
module.issueXReport Result, Exresult, Suppress
Check "issueXReport"

' The tests' register cannot write its journal at first, as the first line says.
If Not DayClosed Then
  WScript.Echo "the day is still open: " & Reason & "; look at the register, then once more"
  If Not DayClosed Then Check "issueZReport"
End If
ShowJournal "c:\bbox"

module.issueZReprintReport Result, Exresult, Suppress
Check "issueZReprintReport"

module.DisConnect_ port, Result, Exresult, Suppress
WScript.Echo "ok"

Function DayClosed
  Const Untouched = 32767
  WScript.Echo "closing the day"
  ' A call with Suppress that cannot read the journal leaves both variables as they are.
  Result = Untouched: Exresult = "the journal was not taken"
  On Error Resume Next
  module.issueZReport Result, Exresult, Suppress
  If Err.Number = 13 Then Exresult = "the journal's files cannot be written"
  If Err.Number <> 0 Then Result = Untouched
  DayClosed = Result = 0
  If Not DayClosed Then WScript.Echo Result & " " & Exresult
End Function

' Only reads the journal, prints no Z report, and returns why it cannot be read.
Function Reason
  Dim journal, why
  Set journal = CreateObject("VarlenFiscalQ7734.FiscalJournal")
  Reason = "the journal is ready now"
  If journal.eMakeZreport(why, True, False) <> 0 Then Reason = why
End Function

Sub ShowJournal(folder)
  Dim serialFolder, dayFolder, file
  For Each serialFolder In CreateObject("Scripting.FileSystemObject").GetFolder(folder).SubFolders
    For Each dayFolder In serialFolder.SubFolders
      For Each file In dayFolder.Files
        WScript.Echo file.Path & ", " & file.Size & " bytes"
      Next
    Next
  Next
End Sub

Sub Check(step_)
  If Result = 0 Then Exit Sub
  WScript.Echo "FAIL " & step_ & ": " & Result & " " & Exresult
  WScript.Quit 1
End Sub
