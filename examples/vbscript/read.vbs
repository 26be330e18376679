' Reading: the open receipt, the day, departments, VAT rates, the date, the state.
'
'   cscript //nologo read.vbs 127.0.0.1:9100
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

module.ItemSale "Καφές", 2, 1.80, 24, 1, Result, Exresult, Suppress
Check "ItemSale"
ShowReceipt
module.Payment 1, "ΜΕΤΡΗΤΑ", 0, 0, 0, Result, Exresult, Suppress
Check "Payment"
ShowDay
ShowDepartment 1
ShowRegister

module.DisConnect_ port, Result, Exresult, Suppress
WScript.Echo "ok"

Sub ShowReceipt
  Dim totals
  Set totals = CreateObject("VarlenFiscalQ7734.clsTransTotal")
  module.transactionTotals totals, Result, Exresult, Suppress
  Check "transactionTotals"
  WScript.Echo "receipt " & totals.receiptNumber & " comes to " & FormatNumber(totals.receiptTotalAmt, 2)
End Sub

Sub ShowDay
  Dim day
  Set day = CreateObject("VarlenFiscalQ7734.clsDailyAcc")
  module.getDailyTotals day, Result, Exresult, Suppress
  Check "getDailyTotals"
  WScript.Echo "today " & day.LegalReceiptCount & " receipt(s), " & FormatNumber(day.VatSum, 2) & _
    ", in cash " & FormatNumber(day.amtPaymentType1, 2)
End Sub

Sub ShowDepartment(number)
  Dim sales
  Set sales = CreateObject("VarlenFiscalQ7734.clsAccumulator")
  sales.Id = number
  module.getSalesPerDepartment sales, Result, Exresult, Suppress
  Check "getSalesPerDepartment"
  WScript.Echo sales.Desc & ": " & FormatNumber(sales.Amount, 2)
End Sub

Sub ShowRegister
  Dim today, a, b, c, d, e
  module.getDate today, Result, Exresult, Suppress
  Check "getDate"
  module.getVatCategories a, b, c, d, e, Result, Exresult, Suppress
  Check "getVatCategories"
  WScript.Echo today & ", VAT rates " & a & " " & b & " " & c & " " & d & " " & e
  module.printerStatusRead Result, Exresult, Suppress
  Check "printerStatusRead"
  If module.StatusRead.isDayOpen Then WScript.Echo "the day is open"
  If Not module.StatusRead.isTransactionOpen Then WScript.Echo "no receipt is open"
End Sub

Sub Check(step_)
  If Result = 0 Then Exit Sub
  WScript.Echo "FAIL " & step_ & ": " & Result & " " & Exresult
  WScript.Quit 1
End Sub
