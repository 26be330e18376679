' A failure that is not suppressed shows one message box, a suppressed one none: boxes.sh answers one of each kind and
' no more, and another would keep this script waiting.
Option Explicit

Dim module, driver, Result, Exresult
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
Set driver = CreateObject("VarlenFiscalQ7734.fiscalNullModule")
driver.issueXReport Result, Exresult, True
Expect "Result of a suppressed refusal", 100, Result
driver.issueXReport Result, Exresult, False
Expect "a refusal", "100 Λάθος τύπος Φορολ. Εκτυπωτή", Result & " " & Exresult

' Connect_ never shows one.
module.Connect_ "COM99", Result, Exresult, True
module.DisConnect_ "", Result, Exresult, False
module.Connect_ WScript.Arguments(0), Result, Exresult, False
Expect "Result of Connect_", 0, Result
module.ItemSale "Καφές", 0, 1, 24, 1, Result, Exresult, True
Expect "Result of a suppressed failure", 103, Result
module.ItemSale "Καφές", 1, 1, 24, 1, Result, Exresult, False
Expect "Result of a success", 0, Result
module.ItemSale "Καφές", 0, 1, 24, 1, Result, Exresult, False
Expect "a failure", "103 Qty Error", Result & " " & Exresult
module.DisConnect_ WScript.Arguments(0), Result, Exresult, False
WScript.Echo "ok"
