' emulator: --fault "on 3/S busy 14" --fault "on ?/ 3 busy 14" --fault "on ?/ 6 code 158"
' A busy register, then one with a card payment under way: the operator reads both in one window, which wait.sh looks at
' and cannot close; the line is sold once.
Option Explicit

Dim module, totals, Result, Exresult
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
Set totals = CreateObject("VarlenFiscalQ7734.clsTransTotal")
module.Connect_ WScript.Arguments(0), Result, Exresult, True
Expect "Result of Connect_", 0, Result
module.ItemSale "Καφές", 1, 2.5, 24, 1, Result, Exresult, False
Expect "Result of ItemSale, " & Exresult, 0, Result
module.transactionTotals totals, Result, Exresult, True
Expect "total of the receipt", 2.5, totals.receiptTotalAmt
module.DisConnect_ "", Result, Exresult, True
WScript.Echo "ok"
