' both: a shop's day over the serial line, the next over the network, against books that are kept in hundredths.
Option Explicit

Const Library = "VarlenFiscalQ7734."
Dim module, Result, Exresult, Suppress, Pass, rates, receipt, books, vat, dep, category
Suppress = True: Result = 77: rates = Array(24, 12.5, 6, 36, 0)
Set module = CreateObject(Library & "fiscalTrevikModule")
Set receipt = CreateObject("Scripting.Dictionary"): Set books = CreateObject("Scripting.Dictionary")
PlayDay 1, WScript.Arguments(0)
PlayDay 2, WScript.Arguments(1)
WScript.Echo "ok"

Sub PlayDay(day, port)
  Dim n
  module.Connect_ port, Result, Exresult, Suppress: Succeeded "Connect_"
  Configure day
  For n = 1 To 50
    Sell n
    If n Mod 15 = 0 Then ExpectTotals "after receipt " & n
  Next
  module.executeCashIn 20, "Κέρματα", Result, Exresult, Suppress: Succeeded "executeCashIn"
  module.executeCashOut 5.5, "Προμηθευτής", Result, Exresult, Suppress: Succeeded "executeCashOut"
  Add books, "documents", 200
  module.issueXReport Result, Exresult, Suppress: Succeeded "issueXReport"
  ExpectTotals "after the X report"
  module.issueZReport Result, Exresult, Suppress: Succeeded "issueZReport"
  books.RemoveAll: ExpectTotals "after the Z report"
  module.SendCommand_ "#/", Result, Exresult, Suppress, Pass: Succeeded "#/"
  Expect "number of the last closure", CStr(day), Mid(Exresult, 10, 1)
  module.DisConnect_ port, Result, Exresult, Suppress: Expect "DisConnect_", 1, Result
End Sub

Sub Configure(day)
  Dim a, b, c, d, e, f, g, h, i, j, settings, display, urls, key, active
  module.setHeader "ΚΑΦΕ/ΜΠΑΡ", 3, "Πρώτη", 1, "", 1, "", 2, "Ημέρα", day, Result, Exresult, Suppress
  module.getHeader a, b, c, d, e, f, g, h, i, j, Result, Exresult, Suppress: Succeeded "getHeader"
  Expect "header", "ΚΑΦΕ-ΜΠΑΡ3Πρωτη112Ημερα" & day, a & b & c & d & e & f & g & h & i & j
  module.setFooter "Στο καλό", day, "", 1, "Τέλος", 1, Result, Exresult, Suppress: Succeeded "setFooter"
  module.getFooter a, b, c, d, e, f, Result, Exresult, Suppress
  Expect "footer", "Στο καλο" & day & "1Τελος1", a & b & c & d & e & f
  module.setVatCategories 24, 12.5, 6, 36, 0, Result, Exresult, Suppress: Succeeded "setVatCategories"

  Set settings = CreateObject(Library & "clsParam")
  module.settingsRead settings, Result, Exresult, Suppress: Succeeded "settingsRead"
  settings.cashierDesc = "ΜΑΡΙΑ" & day: display = 1 - settings.useLCDdisplay  ' which each reading inverts
  module.settingsWrite settings, Result, Exresult, Suppress: Succeeded "settingsWrite"
  module.settingsRead settings, Result, Exresult, Suppress: Succeeded "settingsRead again"
  Expect "settings", "ΜΑΡΙΑ" & day & display, settings.cashierDesc & settings.useLCDdisplay

  module.setVATNumber "12345678" & day, Result, Exresult, Suppress, Pass: Succeeded "setVATNumber"
  urls = "https://tax/in.php|https://tax/qr": key = String(64, "A")
  module.setServerSettings 1, urls, "443", key, Result, Exresult, Suppress, Pass: Succeeded "setServerSettings"
  module.getServerSettings active, b, c, d, Result, Exresult, Suppress, Pass: Succeeded "getServerSettings"
  Expect "server", "1 " & urls & " 443 " & key, active & " " & b & " " & c & " " & d
End Sub

' A receipt's number decides what it sells, what becomes of that and how it ends.
Sub Sell(n)
  Dim price, tenth, totals, sum, key
  receipt.RemoveAll: price = 250 + n
  vat = n \ 5 Mod 5: dep = n Mod 4 + 1: category = 1
  Enter "plain sale", 1235, 95 + 37 * n
  ' What the subtotal is adjusted by is shared among the VAT categories: there only one is sold.
  If n Mod 8 < 6 Then vat = (vat + 1) Mod 5
  dep = n Mod 6 + 1: category = n Mod 3 + 2
  Enter "sale", 2000, price
  If n Mod 8 > 5 Then dep = "none": category = "none": tenth = (receipt("sum") + 5) \ 10
  Select Case n Mod 8
    Case 0: Enter "void", 2000, price: Add receipt, "voids", 2 * price
    Case 1: Enter "refund", 1000, 50: Add receipt, "refunds", 50
    Case 2: module.commentPrinterPrint "Καλημέρα / σας", 1, Result, Exresult, Suppress: Succeeded "a comment"
    Case 3: module.adjustment(True).percentDiscount "-", 50, Result, Exresult, Suppress: Adjusted "discounts", -price
    Case 4: module.adjustment(True).amountMarkUp "+", 0.35, Result, Exresult, Suppress: Adjusted "mark-ups", 35
    Case 6: module.adjustment(False).amountDiscount "-", 0.37, Result, Exresult, Suppress: Adjusted "discounts", -37
    Case 7: module.adjustment(False).percentMarkUP "+", 10, Result, Exresult, Suppress: Adjusted "mark-ups", tenth
  End Select

  Set totals = CreateObject(Library & "clsTransTotal")
  module.transactionTotals totals, Result, Exresult, Suppress: Succeeded "transactionTotals"
  Expect "receiptNumber", CLng(n), totals.receiptNumber
  ExpectHundredths "of receipt " & n, receipt, "A B C D E sum", _
    Array(totals.VatA, totals.VatB, totals.VatC, totals.VatD, totals.VatE, totals.receiptTotalAmt)
  sum = receipt("sum"): Add receipt, "receipts", 100
  Select Case n Mod 5
    Case 0: Pay 1, "cash", sum, 480
    Case 1: Pay 2, "card", sum, 0
    Case 2: Pay 3, "cheque", sum, 0
    Case 3: Pay 1, "cash", 100, 0: Pay 4, "card", sum - 100, 0
    Case 4: module.VoidReceipt Result, Exresult, Suppress: Succeeded "VoidReceipt"
      receipt.RemoveAll: Add receipt, "cancelled", sum
  End Select
  For Each key In receipt.Keys: Add books, key, receipt(key): Next
End Sub

' A line of the VAT category, department and category that are set.
Sub Enter(kind, thousandths, cents)
  Dim count, price, rate, sign
  count = thousandths / 1000: price = cents / 100: rate = rates(vat)
  If kind = "plain sale" Then module.ItemSale "Νερό", count, price, rate, dep, Result, Exresult, Suppress
  If kind = "sale" Then module.ItemSale "Ποτό", count, price, rate, dep, Result, Exresult, Suppress, "x", category
  If kind = "void" Then module.ItemVoid "Ποτό", count, price, rate, dep, Result, Exresult, Suppress, "x", category
  If kind = "refund" Then module.ItemRefund "Νερό", count, price, rate, dep, Result, Exresult, Suppress, , category
  Succeeded kind: sign = 1: If kind = "void" Or kind = "refund" Then sign = -1
  Book sign * ((CLng(thousandths) * cents + 500) \ 1000), sign
End Sub

Sub Adjusted(what, cents)
  Succeeded what: Add receipt, what, Abs(cents): Book cents, 0
End Sub

Sub Pay(number, name, cents, change)
  module.Payment number, "", (cents + change) / 100, 0, 0, Result, Exresult, Suppress: Succeeded "Payment in " & name
  Add receipt, name, cents
End Sub

Sub Book(cents, lines)
  Add receipt, Chr(65 + vat), cents: Add receipt, "sum", cents
  Add receipt, "department" & dep, cents: Add receipt, "department-lines" & dep, 100 * lines
  Add receipt, "category" & category, cents: Add receipt, "category-lines" & category, 100 * lines
End Sub

Sub Add(sums, key, hundredths)
  sums(key) = sums(key) + hundredths
End Sub

Sub ExpectTotals(moment)
  Dim day, group, names, i
  Set day = CreateObject(Library & "clsDailyAcc"): Set group = CreateObject(Library & "clsAccumulator")
  module.getDailyTotals day, Result, Exresult, Suppress: Succeeded "getDailyTotals"
  names = "A B C D E sum receipts documents voids refunds cancelled cash card cheque discounts mark-ups"
  ExpectHundredths moment, books, names, Array(day.VatA, day.VatB, day.VatC, day.VatD, day.VatE, day.VatSum, _
    day.LegalReceiptCount, day.illLegalReceiptCount, day.amtVoid, day.amtRefund, day.amtCancel, _
    day.amtPaymentType1, day.amtPaymentType2, day.amtPaymentType3, day.amtDiscount, day.amtMarkUP)
  For i = 1 To 6
    group.Id = i
    module.getSalesPerDepartment group, Result, Exresult, Suppress: Succeeded "getSalesPerDepartment"
    ExpectHundredths moment, books, "department" & i & " department-lines" & i, Array(group.Amount, group.Count)
    module.getSalesPerCategory group, Result, Exresult, Suppress: Succeeded "getSalesPerCategory"
    ExpectHundredths moment, books, "category" & i & " category-lines" & i, Array(group.Amount, group.Count)
  Next
End Sub

Sub ExpectHundredths(moment, sums, names, actual)
  Dim keys, i: keys = Split(names)
  For i = 0 To UBound(keys): Expect keys(i) & " " & moment, CLng(sums(keys(i))) / 100, CDbl(actual(i)): Next
End Sub

Sub Succeeded(what)
  Expect "Result of " & what & ", " & Exresult, 0, Result: Result = 77
End Sub
