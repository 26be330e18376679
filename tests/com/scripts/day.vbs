' both: a shop's day over the serial line, the next over the network: seven times the same seven receipts.
Option Explicit

Const Library = "VarlenFiscalQ7734."
Dim module, Result, Exresult, Suppress, Pass
Suppress = True: Result = 77
Set module = CreateObject(Library & "fiscalTrevikModule")
PlayDay 1, WScript.Arguments(0)
PlayDay 2, WScript.Arguments(1)
WScript.Echo "ok"

Sub PlayDay(day, port)
  Dim n
  module.Connect_ port, Result, Exresult, Suppress: Succeeded "Connect_"
  Configure day
  For n = 1 To 49: Sell n: Next
  module.executeCashIn 20, "Κέρματα", Result, Exresult, Suppress: Succeeded "executeCashIn"
  module.executeCashOut 5.5, "Προμηθευτής", Result, Exresult, Suppress: Succeeded "executeCashOut"
  module.issueXReport Result, Exresult, Suppress: Succeeded "issueXReport"
  ExpectTotals 7, 2
  module.issueZReport Result, Exresult, Suppress: Succeeded "issueZReport"
  ExpectTotals 0, 0
  module.DisConnect_ port, Result, Exresult, Suppress: Expect "DisConnect_", 1, Result
End Sub

Sub Configure(day)
  Dim a, b, c, d, e, f, g, h, i, j, settings, display, urls, key, active
  module.setHeader "ΚΑΦΕ/ΜΠΑΡ", 3, "Πρώτη", 1, "", 1, "", 2, "Ημέρα", day, Result, Exresult, Suppress
  module.getHeader a, b, c, d, e, f, g, h, i, j, Result, Exresult, Suppress: Succeeded "getHeader"
  Expect "header", "ΚΑΦΕ-ΜΠΑΡ3Πρωτη112Ημερα" & day, a & b & c & d & e & f & g & h & i & j
  module.setFooter "Στο καλό", day, "", 1, "Τέλος", 1, Result, Exresult, Suppress: Succeeded "setFooter"
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

' Sells for 2.47 in the first VAT category and for 5.00 in the second; the number decides what becomes of that.
Sub Sell(n)
  Dim totals, sums, sum
  module.ItemSale "Καφές", 1.235, 2, 24, 1, Result, Exresult, Suppress: Succeeded "a plain sale"
  module.ItemSale "Ποτό", 2, 2.5, 12.5, 2, Result, Exresult, Suppress, "x", 3: Succeeded "a sale"
  sums = Array(2.47, 6.97, 7.47, 4.97, 7.82, 7, 8.22)
  sum = sums(n Mod 7)
  Select Case n Mod 7
    Case 0: module.ItemVoid "Ποτό", 2, 2.5, 12.5, 2, Result, Exresult, Suppress, "x", 3
    Case 1: module.ItemRefund "Νερό", 1, 0.5, 12.5, 2, Result, Exresult, Suppress, , 3
    Case 2: module.commentPrinterPrint "Καλημέρα / σας", 1, Result, Exresult, Suppress
    Case 3: module.adjustment(True).percentDiscount "-", 50, Result, Exresult, Suppress
    Case 4: module.adjustment(True).amountMarkUp "+", 0.35, Result, Exresult, Suppress
    Case 5: module.adjustment(False).amountDiscount "-", 0.47, Result, Exresult, Suppress
    Case 6: module.adjustment(False).percentMarkUP "+", 10, Result, Exresult, Suppress
  End Select
  Succeeded "what receipt " & n & " goes on with"
  Set totals = CreateObject(Library & "clsTransTotal")
  module.transactionTotals totals, Result, Exresult, Suppress: Succeeded "transactionTotals"
  Expect "receiptNumber", CLng(n), totals.receiptNumber
  Expect "sum of receipt " & n, CDbl(sum), totals.receiptTotalAmt
  Select Case n Mod 7
    Case 0, 1: Pay 1, sum + 4.8
    Case 2: module.VoidReceipt Result, Exresult, Suppress: Succeeded "VoidReceipt"
    Case 3: Pay 3, sum
    Case 4: Pay 2, sum
    Case 5, 6: Pay 1, 1: Pay 4, sum - 1
  End Select
End Sub

Sub Pay(number, amount)
  module.Payment number, "", amount, 0, 0, Result, Exresult, Suppress: Succeeded "payment of kind " & number
End Sub

' So many times what the seven receipts add up to, in cents.
Sub ExpectTotals(times, documents)
  Dim day, sums, actual, i
  Set day = CreateObject(Library & "clsDailyAcc")
  module.getDailyTotals day, Result, Exresult, Suppress: Succeeded "getDailyTotals"
  sums = Array(1491, 2254, 0, 0, 0, 3745, 600, 500, 50, 747, 1144, 2104, 497, 297, 110)
  actual = Array(day.VatA, day.VatB, day.VatC, day.VatD, day.VatE, day.VatSum, day.LegalReceiptCount, day.amtVoid, _
    day.amtRefund, day.amtCancel, day.amtPaymentType1, day.amtPaymentType2, day.amtPaymentType3, day.amtDiscount, _
    day.amtMarkUP)
  For i = 0 To UBound(sums): Expect "total " & i, CLng(times * sums(i)), CLng(100 * actual(i)): Next
  Expect "documents", CLng(documents), day.illLegalReceiptCount
End Sub

Sub Succeeded(what)
  Expect "Result of " & what & ", " & Exresult, 0, Result: Result = 77
End Sub
