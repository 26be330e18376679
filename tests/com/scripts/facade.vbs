' both: which driver is current, and when.
Option Explicit

Const Library = "VarlenFiscalQ7734."
Const Refusal = "Λάθος τύπος Φορολ. Εκτυπωτή"
Dim module, port, Result, Exresult, Suppress
port = WScript.Arguments(0)
Suppress = True
Set module = CreateObject(Library & "fiscalTrevikModule")
Selected
TwoFacades
Unselected
WScript.Echo "ok"

Sub Selected
  Dim status, moment
  moment = CDate(3)
  ' Neither of the two selects a driver, or Connect_ would be refused.
  Expect "getFiscalType at first", CLng(0), module.getFiscalType
  Expect "StatusRead at first is the same", False, module.StatusRead Is module.StatusRead
  Connect port, 0, ""
  Expect "getFiscalType", CLng(3), module.getFiscalType
  Expect "logoLineDescLength", 48, module.logoLineDescLength
  Set status = module.StatusRead
  Expect "isEuro", True, status.isEuro
  module.ItemSale "Καφές", 1, 2, 24, 1, Result, Exresult, Suppress
  Expect "ItemSale", "0 00/00/06/", Result & " " & Exresult
  Expect "isTransactionOpen after an item", True, status Is module.StatusRead And status.isTransactionOpen
  Result = 7: Exresult = "as before"
  module.setDepartment 7, "Ποτά", 7, Result, Exresult, Suppress
  Expect "setDepartment, which does nothing", "7 as before", Result & " " & Exresult
  Result = Empty: Exresult = CCur(3)
  module.setDepartment moment, Exresult, Exresult, Result, Exresult, Suppress
  Expect "what it leaves of the variables", "Empty Currency Date", _
    TypeName(Result) & " " & TypeName(Exresult) & " " & TypeName(moment)
  Expect "clsEFTpos is the same", True, module.clsEFTpos Is module.clsEFTpos
End Sub

Sub TwoFacades
  Dim other
  Set other = CreateObject(Library & "fiscalTrevikModule")
  Expect "StatusRead is the same for both", True, other.StatusRead Is module.StatusRead
  Expect "clsEFTpos is the same for both", False, other.clsEFTpos Is module.clsEFTpos
  other.VoidReceipt Result, Exresult, Suppress
  Expect "Result of VoidReceipt of the other", 0, Result
  Set other = Nothing
  Expect "getFiscalType without a driver", CLng(3), module.getFiscalType
  module.ItemSale "Καφές", 1, 2, 24, 1, Result, Exresult, Suppress
  Expect "ItemSale without a driver", "100 " & Refusal, Result & " " & Exresult
  Expect "getFiscalType after that", CLng(0), module.getFiscalType
  Connect port, 100, Refusal
  ' The null driver closes the port that the lost driver left open.
  Disconnect port, 1
  Connect port, 0, ""
  Disconnect port, 1
  ' Without a driver DisConnect_ looks for one, and so opens the port before it closes it.
  Disconnect port, 1
End Sub

' Any other call makes the null driver current; it stays until DisConnect_.
Sub Unselected
  module.issueXReport Result, Exresult, Suppress
  Expect "issueXReport before Connect_", "100 " & Refusal, Result & " " & Exresult
  Connect port, 100, Refusal
  Disconnect port, 0
End Sub

Sub Connect(name, code, text)
  Result = Empty: Exresult = Empty
  module.Connect_ name, Result, Exresult, Suppress
  Expect "Connect_ " & name, code & " " & text, Result & " " & Exresult
End Sub

Sub Disconnect(name, code)
  Result = Empty: Exresult = "as before"
  module.DisConnect_ name, Result, Exresult, Suppress
  Expect "DisConnect_ " & name, code & " as before", Result & " " & Exresult
End Sub
