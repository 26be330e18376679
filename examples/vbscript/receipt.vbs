' A receipt through the component: connect, sell, void, comment, pay in cash.
'
'   cscript //nologo receipt.vbs [port]
'
' This file is kept in UTF-8. Script hosts read the ANSI code page: on a Greek machine save a copy in code page 1253
' before running it (iconv -f UTF-8 -t CP1253).
Option Explicit

' Every by-reference argument is a plain variable, so that the component can write to it.
Dim module, port, Result, Exresult, Suppress
Suppress = True

port = "COM1"
If WScript.Arguments.Count > 0 Then port = WScript.Arguments(0)

Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
WScript.Echo "connecting to " & port
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

WScript.Echo "disconnecting"
module.DisConnect_ port, Result, Exresult, Suppress
' A closed port is reported as 1, the value of the system call that closed it.
If Result <> 1 Then Check "DisConnect_"
WScript.Echo "ok"

Sub ShowVersion
  Dim pass
  pass = ""
  module.GetVersionInfo Result, Exresult, Suppress, pass
  Check "GetVersionInfo"
  WScript.Echo Exresult
End Sub

Sub Sell(description, quantity, price, vatRate, department, note)
  WScript.Echo "selling " & quantity & " x " & description
  module.ItemSale description, quantity, price, vatRate, department, Result, Exresult, Suppress, note
  Check "ItemSale"
End Sub

Sub VoidItem(description, quantity, price, vatRate, department)
  WScript.Echo "voiding " & quantity & " x " & description
  module.ItemVoid description, quantity, price, vatRate, department, Result, Exresult, Suppress
  Check "ItemVoid"
End Sub

Sub Comment(text)
  Dim size
  size = 1
  WScript.Echo "printing a comment"
  module.commentPrinterPrint text, size, Result, Exresult, Suppress
  Check "commentPrinterPrint"
End Sub

' The receipt closes by itself once the payments cover its total.
Sub PayCash(amount)
  Dim totals, paymentNumber, description, noTerminal
  Set totals = CreateObject("VarlenFiscalQ7734.clsTransTotal")
  module.transactionTotals totals, Result, Exresult, Suppress
  Check "transactionTotals"
  WScript.Echo "paying " & FormatNumber(totals.receiptTotalAmt, 2) & " with " & FormatNumber(amount, 2) & _
    ", change " & FormatNumber(amount - totals.receiptTotalAmt, 2)

  paymentNumber = 1
  description = "ΜΕΤΡΗΤΑ"
  noTerminal = 0
  module.Payment paymentNumber, description, amount, noTerminal, noTerminal, Result, Exresult, Suppress
  Check "Payment"
End Sub

Sub Check(step_)
  If Result = 0 Then Exit Sub
  WScript.Echo "FAIL " & step_ & ": " & Result & " " & Exresult
  WScript.Quit 1
End Sub
