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
  Dim status, number, text, terminal
  ' Neither of the two selects a driver, or Connect_ would be refused.
  Expect "getFiscalType at first", CLng(0), module.getFiscalType
  Set status = module.StatusRead
  Expect "isEuro at first", False, status.isEuro
  Expect "StatusRead at first is the same", False, status Is module.StatusRead
  Connect port, 0, ""
  Expect "getFiscalType", CLng(3), module.getFiscalType
  Expect "logoLineDescLength", 48, module.logoLineDescLength
  Set status = module.StatusRead
  Expect "StatusRead is the same", True, status Is module.StatusRead
  Expect "isEuro", True, status.isEuro
  Expect "isDayOpen", False, status.isDayOpen
  Expect "FiscalType", 3, status.FiscalType
  Expect "FiscalSN", "", status.FiscalSN
  Sell 0, "00/00/06/"
  Expect "isDayOpen after an item", True, module.StatusRead.isDayOpen
  Expect "isTransactionOpen after an item", True, module.StatusRead.isTransactionOpen
  ' An open port is kept, whatever the name.
  Connect "COM99", 0, ""

  number = 7: text = "Ποτά": Result = 7: Exresult = "as before"
  module.setDepartment number, text, number, Result, Exresult, Suppress
  Expect "setDepartment's arguments", "7 Ποτά 7 as before", number & " " & text & " " & Result & " " & Exresult
  Set terminal = module.clsEFTpos
  terminal.eftId = 4
  Expect "clsEFTpos is the same", True, terminal Is module.clsEFTpos
  Expect "clsEFTpos's eftId", 4, module.clsEFTpos.eftId
  Expect "adjustment is Nothing", False, module.adjustment(True) Is Nothing
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
  Sell 100, Refusal
  Expect "getFiscalType after that", CLng(0), module.getFiscalType
  Connect port, 100, Refusal
  ' The null driver closes the port that the lost driver left open.
  Disconnect port, 1
  Connect port, 0, ""
  Disconnect port, 1
  Expect "getFiscalType after DisConnect_", CLng(3), module.getFiscalType
  ' Without a driver DisConnect_ looks for one, and so opens the port before it closes it.
  Disconnect port, 1
  Disconnect "", 0
  Expect "getFiscalType after DisConnect_ without a port", CLng(0), module.getFiscalType
End Sub

' What makes the null driver current; it stays until DisConnect_.
Sub Unselected
  module.issueXReport Result, Exresult, Suppress
  Expect "issueXReport before Connect_", "100 " & Refusal, Result & " " & Exresult
  Connect port, 100, Refusal
  Disconnect port, 0
  Expect "logoLineDescLength before Connect_", 0, module.logoLineDescLength
  Connect port, 100, Refusal
  Disconnect port, 0
  Connect "", 100, Refusal
  Disconnect "", 0
  Connect "COM99", 100, Refusal
  Expect "getFiscalType after Connect_ to no port", CLng(0), module.getFiscalType
  Disconnect "", 0
  Connect port, 0, ""
  Disconnect port, 1
End Sub

Sub Connect(name, code, text)
  Result = Empty: Exresult = Empty
  module.Connect_ name, Result, Exresult, Suppress
  Expect "Result of Connect_ " & name, code, Result
  Expect "Exresult of Connect_ " & name, text, Exresult
End Sub

Sub Disconnect(name, code)
  Result = Empty: Exresult = "as before"
  module.DisConnect_ name, Result, Exresult, Suppress
  Expect "Result of DisConnect_ " & name, code, Result
  Expect "Exresult of DisConnect_ " & name, "as before", Exresult
End Sub

Sub Sell(code, text)
  module.ItemSale "Καφές", 1, 2, 24, 1, Result, Exresult, Suppress
  Expect "Result of ItemSale", code, Result
  Expect "Exresult of ItemSale", text, Exresult
End Sub
