' emulator: --fault "on A/ 7 code 135"
' A failure that is not suppressed shows one message box, a suppressed one none: boxes.sh answers one of each kind and
' no more, and another would keep this script waiting.
Option Explicit

Dim module, driver, Result, Exresult, Suppress, endpoint
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
Set driver = CreateObject("VarlenFiscalQ7734.fiscalNullModule")
For Each Suppress In Array(True, False)
  driver.issueXReport Result, Exresult, Suppress
  Expect "a refusal", "100 Λάθος τύπος Φορολ. Εκτυπωτή", Result & " " & Exresult
Next
Set driver = Nothing
module.Connect_ WScript.Arguments(0), Result, Exresult, False
Expect "Result of Connect_", 0, Result
For Each Suppress In Array(True, False)
  module.ItemSale "Καφές", 0, 1, 24, 1, Result, Exresult, Suppress
  Expect "a failure", "103 Qty Error", Result & " " & Exresult
  module.ItemSale "Καφές " & Chr(6), 1, 1, 24, 1, Result, Exresult, Suppress
  Expect "Result of a success", 0, Result
Next
module.VoidReceipt Result, Exresult, False

' Without the journal nothing is closed, and a reprint takes the journal first.
Result = 77
module.issueZReport Result, Exresult, False
Expect "Result of a Z report without its journal", 135, Result
For Each Suppress In Array(True, False)
  module.issueZReprintReport Result, Exresult, Suppress
  Expect "Result of the reprint", 135, Result
Next
module.DisConnect_ WScript.Arguments(0), Result, Exresult, False

' The network endpoint's own boxes know no suppression.
Set endpoint = CreateObject("VarlenFiscalQ7734.cTCPIP")
Expect "sending on no socket", False, endpoint.SendData("x")
WScript.Echo "ok"
