' both: a whole receipt, half over each line, with a plain variable, Empty at first, for every by-reference argument.
Option Explicit

Dim module, port, Result, Exresult, Suppress, version, number, text, amount, terminal, kind
port = WScript.Arguments(0)
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
module.Connect_ port, Result, Exresult, Suppress
Succeeded "Connect_"
Expect "an Empty Suppress", False, Suppress
Suppress = True

module.GetVersionInfo Result, Exresult, Suppress, version
Succeeded "GetVersionInfo"
Expect "an Empty Pass", "", version

Sell "Καφές ελληνικός", 2, 1.8, 24, 1, "σκέτος", 1
Sell "Τυρόπιτα", 3, 2.2, 13, 2, Empty, Empty
' The other half over the network; the register is the same.
module.DisConnect_ port, Result, Exresult, Suppress
Expect "Result of DisConnect_", 1, Result
port = WScript.Arguments(1)
module.Connect_ port, Result, Exresult, Suppress
Succeeded "Connect_ over the network"
Sell "Νερό / λίτρα", 1.5, 0.5, 13, 2, "", 2
Sell "Βιβλίο", 1, 9.9, 6, 3, Empty, 1
module.ItemVoid "Τυρόπιτα", 1, 2.2, 13, 2, Result, Exresult, Suppress
Succeeded "ItemVoid"
text = "Ευχαριστούμε!": number = 1
module.commentPrinterPrint text, number, Result, Exresult, Suppress
Succeeded "commentPrinterPrint"
Expect "isTransactionOpen", True, module.StatusRead.isTransactionOpen

text = "ΜΕΤΡΗΤΑ": amount = 20
module.Payment number, text, amount, terminal, kind, Result, Exresult, Suppress
Succeeded "Payment"
Expect "an Empty eftposNum", 0, terminal
Expect "an Empty eftposType", 0, kind
Expect "isTransactionOpen after Payment", False, module.StatusRead.isTransactionOpen
module.DisConnect_ port, Result, Exresult, Suppress
WScript.Echo "ok"

' A variable comes back in the type of its parameter.
Sub Sell(description, quantity, price, rate, department, note, category)
  module.ItemSale description, quantity, price, rate, department, Result, Exresult, Suppress, note, category
  Succeeded "ItemSale " & description
  Expect "types after ItemSale " & description, "String Double Double Double Integer String Integer", _
    TypeName(description) & " " & TypeName(quantity) & " " & TypeName(price) & " " & TypeName(rate) & " " & _
    TypeName(department) & " " & TypeName(note) & " " & TypeName(category)
End Sub

Sub Succeeded(what)
  Expect "Result of " & what, 0, Result
  Expect "type of the Exresult of " & what, "String", TypeName(Exresult)
  Result = Empty: Exresult = Empty
End Sub
