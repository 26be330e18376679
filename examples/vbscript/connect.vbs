' Finding the register: its port, its model, its serial number.
'
'   cscript //nologo connect.vbs COM1 127.0.0.1:9100
'
' The release has this file in UTF-16, which every Windows reads. In the sources it is in UTF-8, which script hosts
' misread: run a converted copy (iconv -f UTF-8 -t CP1253 on a Greek machine).
Option Explicit

Dim module, port, Result, Exresult, Suppress
Suppress = True

Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
' A port that this machine does not have, to show what a till sees then.
If Connected("COM99") Then Fail "COM99 is not expected to be there"

port = "127.0.0.1:9100"
If WScript.Arguments.Count > 0 Then port = WScript.Arguments(0)
ShowRegister port
' The register may also be on the network.
If WScript.Arguments.Count > 1 Then ShowRegister WScript.Arguments(1)
WScript.Echo "ok"

Sub ShowRegister(port)
  Dim serialNumber
  If Not Connected(port) Then Fail "no register on " & port
  module.getSerialNumber serialNumber, Result, Exresult, Suppress
  If Result <> 0 Then Fail Result & " " & Exresult
  WScript.Echo "serial number " & serialNumber
  Disconnect port
End Sub

' Connect_ opens the port and sends nothing. Only an answer shows that a register is there.
Function Connected(port)
  Dim pass
  Connected = False
  WScript.Echo "connecting to " & port
  module.Connect_ port, Result, Exresult, Suppress
  If Result = 0 Then module.GetVersionInfo Result, Exresult, Suppress, pass
  If Result = 0 Then
    WScript.Echo port & ": " & Replace(Exresult, vbCrLf, ", ")
    Connected = True
  Else
    WScript.Echo port & ": " & Result & " " & Exresult
    ' Without this the next Connect_ would keep the open port.
    Disconnect port
  End If
End Function

' Result is 1 when a port was closed, 0 when none was open.
Sub Disconnect(port)
  module.DisConnect_ port, Result, Exresult, Suppress
End Sub

Sub Fail(complaint)
  WScript.Echo "FAIL " & complaint
  WScript.Quit 1
End Sub
