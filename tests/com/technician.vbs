' A receipt during which somebody pulls the line. Arguments: the port.
Set till = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
Result = 77 : Exresult = "" : Suppress = False

Sub Tell(what)
  WScript.Echo what & " " & Result & " " & Exresult
End Sub

till.Connect_ WScript.Arguments(0), Result, Exresult, Suppress
Tell "Connect_"
till.ItemSale "Καφές", 1, 2.5, 24, 1, Result, Exresult, Suppress
Tell "Καφές"
till.ItemSale "Τυρόπιτα", 1, 2, 13, 1, Result, Exresult, Suppress
Tell "Τυρόπιτα"
till.ItemSale "Νερό", 2, 0.5, 13, 1, Result, Exresult, Suppress
Tell "Νερό"
till.Payment 1, "ΜΕΤΡΗΤΑ", 10, 0, 0, Result, Exresult, Suppress
Tell "Payment"
till.DisConnect_ WScript.Arguments(0), Result, Exresult, Suppress
Tell "DisConnect_"
WScript.Echo "ok"
