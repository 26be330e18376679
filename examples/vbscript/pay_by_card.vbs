' Paying by card: the terminal, a payment that fails, one that succeeds. emulator: --card-seconds 1 --card 156
'
'   cscript //nologo pay_by_card.vbs 127.0.0.1:9100
'
' The release has this file in UTF-16, which every Windows reads. In the sources it is in UTF-8, which script hosts
' misread: run a converted copy (iconv -f UTF-8 -t CP1253 on a Greek machine).
Option Explicit

Dim module, port, Result, Exresult, Suppress
Suppress = True

If WScript.Arguments.Count = 0 Then
  WScript.Echo "This changes the register's card terminal. Give its port, for the emulator:" & vbCrLf & _
    "cscript //nologo """ & WScript.ScriptFullName & """ 127.0.0.1:9100"
  WScript.Quit 2
End If
port = WScript.Arguments(0)
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
WScript.Echo "connecting to " & port
module.Connect_ port, Result, Exresult, Suppress
Check "Connect_"

SetTerminal 1, "192.168.1.60", 4000
module.ItemSale "Καφές", 2, 1.80, 24, 1, Result, Exresult, Suppress
Check "ItemSale"
' The tests' terminal declines the first payment, as the first line says.
If Not PaidByCard(3.60) Then
  ShowRemaining
  WScript.Echo "another card"
  If Not PaidByCard(3.60) Then Check "Payment"
End If

module.DisConnect_ port, Result, Exresult, Suppress
WScript.Echo "ok"

Sub SetTerminal(number, address, terminalPort)
  Dim terminal
  Set terminal = module.clsEFTpos
  terminal.eftId = number
  terminal.eftEnabled = 1
  terminal.eftIP = address
  terminal.eftPort = terminalPort
  terminal.eftDescription = "ΤΑΜΕΙΟ"
  terminal.eftTimeout = 60
  module.eftSet terminal, Result, Exresult, Suppress
  Check "eftSet"
  module.eftTest terminal, Result, Exresult, Suppress
  Check "eftTest"
  WScript.Echo "terminal " & number & " answers at " & address
End Sub

' Returns when the terminal has finished; meanwhile a window asks the operator to wait.
Function PaidByCard(amount)
  Const Card = 2, FirstTerminal = 1, ItsType = 0
  WScript.Echo "paying " & FormatNumber(amount, 2) & " by card; waiting for the terminal"
  module.Payment Card, "ΚΑΡΤΑ", amount, FirstTerminal, ItsType, Result, Exresult, Suppress
  PaidByCard = Result = 0 And Not module.StatusRead.isTransactionOpen
  If Result <> 0 Then WScript.Echo Result & " " & Exresult
End Function

' The answer is "00/00/06/", followed by the remaining amount, the change and the amount paid, each with "/". If the
' printer needs attention, its message is there instead.
Sub ShowRemaining
  Dim fields, Pass
  module.SendCommand_ "5/99/1/1/1/", Result, Exresult, Suppress, Pass
  Check "SendCommand_"
  fields = Array()
  If Result = 0 Then fields = Split(Exresult, "/")
  If UBound(fields) >= 5 Then WScript.Echo "remaining " & fields(3) & ", paid " & fields(5)
End Sub

Sub Check(step_)
  If Result = 0 Then Exit Sub
  WScript.Echo "FAIL " & step_ & ": " & Result & " " & Exresult
  WScript.Quit 1
End Sub
