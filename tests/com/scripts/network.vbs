' both: the receipt of receipt.vbs over the network and in part over the serial port.
Option Explicit

Dim module, address, Result, Exresult, Suppress
address = WScript.Arguments(1)
Suppress = True
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
Connect address
Expect "getFiscalType", CLng(3), module.getFiscalType
Sell "Καφές ελληνικός", 2, 1.8, 24, "σκέτος", 0, "00/00/06/"
Sell "Τυρόπιτα", 3, 2.2, 13, "", 0, "00/00/06/"
Sell "nothing", 0, 2.2, 13, "", 103, "Qty Error"
Disconnect address

Connect WScript.Arguments(0)
Sell "Νερό / λίτρα", 1.5, 0.5, 13, "", 0, "00/00/06/"
Disconnect WScript.Arguments(0)

Connect address
Sell "Βιβλίο", 1, 9.9, 6, "", 0, "00/00/06/"
module.ItemVoid "Τυρόπιτα", 1, 2.2, 13, 2, Result, Exresult, Suppress
module.commentPrinterPrint "Ευχαριστούμε!", 1, Result, Exresult, Suppress
module.Payment 1, "ΜΕΤΡΗΤΑ", 20, 0, 0, Result, Exresult, Suppress
Expect "Result of Payment", 0, Result
Disconnect address
WScript.Echo "ok"

Sub Connect(name)
  Result = Empty: Exresult = Empty
  module.Connect_ name, Result, Exresult, Suppress
  Expect "Result of Connect_ " & name, 0, Result
  Expect "Exresult of Connect_ " & name, "", Exresult
End Sub

Sub Disconnect(name)
  module.DisConnect_ name, Result, Exresult, Suppress
  Expect "Result of DisConnect_ " & name, 1, Result
End Sub

Sub Sell(description, quantity, price, rate, note, code, text)
  module.ItemSale description, quantity, price, rate, 1, Result, Exresult, Suppress, note
  Expect "Result of " & description, code, Result
  Expect "Exresult of " & description, text, Exresult
End Sub

Sub Expect(what, expected, actual)
  If VarType(expected) = VarType(actual) Then If expected = actual Then Exit Sub
  WScript.Echo "FAIL " & what & ": expected " & TypeName(expected) & " " & expected
  WScript.Echo "  got " & TypeName(actual) & " " & actual
End Sub
