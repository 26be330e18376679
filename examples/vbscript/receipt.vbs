' A receipt through the component: connect, sell, void, comment, pay in cash.
'
'   cscript //nologo receipt.vbs 127.0.0.1:9100
'
' or a double click, with the emulator running on this machine
'
' The release has this file in UTF-16, which every Windows reads. In the sources it is in UTF-8, which script hosts
' misread: run a converted copy (iconv -f UTF-8 -t CP1253 on a Greek machine).
Option Explicit

' Every by-reference argument is a plain variable, so that the component can write to it.
Dim module, port, Result, Exresult, Suppress, said
Suppress = True

port = "127.0.0.1:9100"
If WScript.Arguments.Count > 0 Then port = WScript.Arguments(0)

Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
Say "connecting to " & port
module.Connect_ port, Result, Exresult, Suppress
Check "Connect_"

ShowVersion
Sell "Καφές ελληνικός", 2, 1.80, 24, 1, "σκέτος"
Sell "Τυρόπιτα", 3, 2.20, 13, 2, ""
Sell "Νερό 0,5 λ.", 1, 0.50, 13, 2, ""
Sell "Βιβλίο ""Οδύσσεια""", 1, 9.90, 6, 3, ""
VoidItem "Τυρόπιτα", 1, 2.20, 13, 2
Comment "Σας ευχαριστούμε!"
PayCash 30

Say "disconnecting"
module.DisConnect_ port, Result, Exresult, Suppress
' A closed port is reported as 1, the value of the system call that closed it.
If Result <> 1 Then Check "DisConnect_"
Finish "ok", 0

' A double click runs wscript, whose Echo is a message box: all lines are shown together at the end.
Sub Say(text)
  said = said & text & vbCrLf
End Sub

Sub Finish(verdict, exitCode)
  WScript.Echo said & verdict
  WScript.Quit exitCode
End Sub

Sub ShowVersion
  Dim pass
  pass = ""
  module.GetVersionInfo Result, Exresult, Suppress, pass
  Check "GetVersionInfo"
  Say Exresult
End Sub

Sub Sell(description, quantity, price, vatRate, department, note)
  Say "selling " & quantity & " x " & description
  module.ItemSale description, quantity, price, vatRate, department, Result, Exresult, Suppress, note
  Check "ItemSale"
End Sub

Sub VoidItem(description, quantity, price, vatRate, department)
  Say "voiding " & quantity & " x " & description
  module.ItemVoid description, quantity, price, vatRate, department, Result, Exresult, Suppress
  Check "ItemVoid"
End Sub

Sub Comment(text)
  Dim size
  size = 1
  Say "printing a comment"
  module.commentPrinterPrint text, size, Result, Exresult, Suppress
  Check "commentPrinterPrint"
End Sub

' The receipt closes by itself once the payments cover its total.
Sub PayCash(amount)
  Dim totals, paymentNumber, description, noTerminal
  Set totals = CreateObject("VarlenFiscalQ7734.clsTransTotal")
  module.transactionTotals totals, Result, Exresult, Suppress
  Check "transactionTotals"
  Say "paying " & FormatNumber(totals.receiptTotalAmt, 2) & " with " & FormatNumber(amount, 2) & _
    ", change " & FormatNumber(amount - totals.receiptTotalAmt, 2)

  paymentNumber = 1
  description = "ΜΕΤΡΗΤΑ"
  noTerminal = 0
  module.Payment paymentNumber, description, amount, noTerminal, noTerminal, Result, Exresult, Suppress
  Check "Payment"
End Sub

Sub Check(step_)
  If Result = 0 Then Exit Sub
  Finish "FAIL " & step_ & ": " & Result & " " & Exresult, 1
End Sub
