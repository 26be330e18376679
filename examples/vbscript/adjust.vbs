' Discounts and mark-ups: on the last item line and on the subtotal.
'
'   cscript //nologo adjust.vbs 127.0.0.1:9100
'
' The release has this file in UTF-16, which every Windows reads. In the sources it is in UTF-8, which script hosts
' misread: run a converted copy (iconv -f UTF-8 -t CP1253 on a Greek machine).
Option Explicit

Dim module, port, Result, Exresult, Suppress
Suppress = True

port = "127.0.0.1:9100"
If WScript.Arguments.Count > 0 Then port = WScript.Arguments(0)
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
WScript.Echo "connecting to " & port
module.Connect_ port, Result, Exresult, Suppress
Check "Connect_"

Sell "Καφές", 2, 1.80, 24, 1
DiscountLastItem "ΕΚΠΤΩΣΗ", 10
Sell "Τυρόπιτα", 1, 2.20, 13, 2
module.adjustment(True).amountMarkUp "ΣΥΣΚΕΥΑΣΙΑ", 0.30, Result, Exresult, Suppress
Check "amountMarkUp"
DiscountSubtotal "ΚΑΡΤΑ ΠΕΛΑΤΗ", 5
ShowTotal
module.Payment 1, "ΜΕΤΡΗΤΑ", 0, 0, 0, Result, Exresult, Suppress
Check "Payment"

module.DisConnect_ port, Result, Exresult, Suppress
WScript.Echo "ok"

Sub Sell(description, quantity, price, vatRate, department)
  module.ItemSale description, quantity, price, vatRate, department, Result, Exresult, Suppress
  Check "ItemSale"
End Sub

Sub DiscountLastItem(description, ByVal percent)
  WScript.Echo percent & "% off the last item"
  module.adjustment(True).percentDiscount description, percent, Result, Exresult, Suppress
  Check "percentDiscount"
  ' The variable now holds the amount.
  WScript.Echo "that was " & FormatNumber(percent, 2)
End Sub

Sub DiscountSubtotal(description, ByVal percent)
  WScript.Echo percent & "% off the subtotal"
  module.adjustment(False).percentDiscount description, percent, Result, Exresult, Suppress
  Check "percentDiscount"
End Sub

Sub ShowTotal
  Dim totals
  Set totals = CreateObject("VarlenFiscalQ7734.clsTransTotal")
  module.transactionTotals totals, Result, Exresult, Suppress
  Check "transactionTotals"
  WScript.Echo "to pay: " & FormatNumber(totals.receiptTotalAmt, 2)
End Sub

Sub Check(step_)
  If Result = 0 Then Exit Sub
  WScript.Echo "FAIL " & step_ & ": " & Result & " " & Exresult
  WScript.Quit 1
End Sub
