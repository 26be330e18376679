' both: every kind of argument that a call takes, and that an impossible call sends nothing and changes nothing.
Option Explicit

Const Library = "VarlenFiscalQ7734."
Dim module, port, Result, Exresult, Suppress, total
port = WScript.Arguments(0)
Suppress = True
Set module = CreateObject(Library & "fiscalTrevikModule")
module.Connect_ port, Result, Exresult, Suppress

Conversions
Objects
PassedByValue
Outer Result, Exresult
Outputs
Impossible
NullDriver
WScript.Echo "ok"

Sub Conversions
  module.ItemSale 12, CByte(2), CCur("1,25"), 13, CLng(2), Result, Exresult, -1
  Sold "values of other types", "2.50"
  module.ItemSale "omitted in the middle", 1, 70000, 13, CDbl(2), Result, Exresult, True, , 2
  Sold "an omitted optional", "70002.50"
End Sub

' An object of the program's stands for its default property, as a field of a recordset does.
Class Field
  Public Reads
  Public Content
  Public Default Property Get Value
    Reads = Reads + 1
    Value = Content
  End Property
End Class

Sub Objects
  Dim description, quantity
  Set description = New Field: description.Content = "as an object"
  Set quantity = New Field: quantity.Content = "2,5"
  module.ItemSale description, quantity, (quantity), 13, 1, Result, Exresult, True
  Sold "objects", "70008.75"
  Expect "objects afterwards", True, IsObject(description) And IsObject(quantity)
  Expect "how often they were read", "1 2", description.Reads & " " & quantity.Reads
  quantity.Content = Null
  On Error Resume Next
  module.ItemSale "Null", quantity, 1, 13, 1, Result, Exresult, True
  Expect "Err.Number of an object whose value is Null", CLng(13), Err.Number
End Sub

' What is passed by value takes no result.
Sub PassedByValue
  Before
  module.ItemSale ("parenthesised"), ("1"), (4.5), 13, 1, (Result), (Exresult), (Suppress)
  total = "70013.25"
  Unchanged "parenthesised arguments"
  module.ItemSale "literals", 1, 0.5, 13, 1, 0, "", True, "note", 1
  total = "70013.75"
  Unchanged "literals"
End Sub

' A variable that a Sub got by reference still takes its result.
Sub Outer(ByRef code, ByRef text)
  Inner code, text
  Expect "Result through two Subs", 103, Result
  Expect "Exresult through two Subs", "Qty Error", Exresult
End Sub

Sub Inner(ByRef code, ByRef text)
  module.ItemSale "nothing", 0, 1, 13, 1, code, text, Suppress
End Sub

Sub Impossible
  Dim record, odd, value, i
  Set record = CreateObject(Library & "clsDailyAcc")
  Before
  On Error Resume Next
  odd = Array("abc", Null, Array(1), record, Nothing)
  For i = 0 To UBound(odd)
    If IsObject(odd(i)) Then Set value = odd(i) Else value = odd(i)
    module.ItemSale "x", value, 1, 24, 1, Result, Exresult, True: Refused "quantity, odd value " & i, 13
    module.ItemSale "x", 1, 1, 24, (value), Result, Exresult, True: Refused "department, odd value " & i, 13
  Next
  value = 40000
  module.ItemSale "x", 1, 1, 24, value, Result, Exresult, True: Refused "department 40000", 6
  module.transactionTotals record, Result, Exresult, True: Refused "a record of another class", 13
  module.ItemSale "x", 1, 1, 24, 1, Result, Exresult, True, "", 1, 1: Refused "too many arguments", 450
  module.noSuchMember 1: Refused "an unknown member", 438
  module.getFiscalType = 3: Refused "setting a read-only property", 438
End Sub

' What a variable held before does not matter where it only takes a result.
Sub Outputs
  Dim record, odd, code, text, i
  Set record = CreateObject(Library & "clsDailyAcc")
  odd = Array("abc", Null, Array(1), record, Nothing, 100000)
  For i = 0 To UBound(odd)
    If IsObject(odd(i)) Then
      Set code = odd(i): Set text = odd(i)
    Else
      code = odd(i): text = odd(i)
    End If
    module.ItemSale "nothing", 0, 1, 13, 1, code, text, True
    Expect "Result that held odd value " & i, 103, code
    Expect "Exresult that held odd value " & i, "Qty Error", text
  Next
End Sub

' The null driver lacks what only a device can do; an Empty variable stays Empty then.
Sub NullDriver
  Dim terminal, value, text
  module.DisConnect_ port, Result, Exresult, Suppress
  module.Connect_ "", Result, Exresult, Suppress
  Expect "Result of Connect_ without a port", 100, Result
  Set terminal = CreateObject(Library & "clsEFT")
  total = Empty
  Before
  On Error Resume Next
  module.Payment 1, "x", 1, 0, 0, Result, Exresult, True: Refused "Payment", 450
  module.eftdel terminal, value, text, True: Refused "eftdel with Empty variables", 438
  Expect "types of untouched variables", "Empty Empty", TypeName(value) & " " & TypeName(text)
End Sub

Sub Before
  Result = 77: Exresult = "as before"
End Sub

Sub Sold(what, sum)
  Expect "Result of " & what, 0, Result
  total = sum
  CheckTotal what
  Result = Empty: Exresult = Empty
End Sub

Sub Refused(what, number)
  Dim got
  got = Err.Number
  Err.Clear
  Expect "Err.Number of " & what, CLng(number), got
  Unchanged what
  Before
End Sub

Sub Unchanged(what)
  Expect "Result after " & what, 77, Result
  Expect "Exresult after " & what, "as before", Exresult
  If Not IsEmpty(total) Then CheckTotal what
End Sub

' What the device itself says the receipt amounts to.
Sub CheckTotal(what)
  Dim code, reply, fields
  module.SendCommand_ "9/", code, reply, True, ""
  fields = Split(reply, "/")
  Expect "total after " & what, total, fields(9)
End Sub
