' both: what the records do beyond keeping their properties, and the types in which properties come back.
Option Explicit

Const Library = "VarlenFiscalQ7734."
Types
LinkProperties
WScript.Echo "ok"

' A property has one type, whatever it was given.
Sub Types
  Dim settings, daily, status
  Set settings = CreateObject(Library & "clsParam")
  Set daily = CreateObject(Library & "clsDailyAcc")
  Set status = CreateObject(Library & "clsStatus")
  settings.printerId = "7": Expect "printerId = ""7""", 7, settings.printerId
  settings.printerUSeCutter = 200: Expect "printerUSeCutter = 200", CByte(200), settings.printerUSeCutter
  settings.cashierDesc = 12: Expect "cashierDesc = 12", "12", settings.cashierDesc
  daily.VatA = "2,5": Expect "VatA = ""2,5""", 2.5, daily.VatA
  daily.VatA = "2.5": Expect "VatA = ""2.5""", 2.5, daily.VatA
  daily.VatA = 3: Expect "VatA = 3", CDbl(3), daily.VatA
  daily.LegalReceiptCount = 4: Expect "LegalReceiptCount = 4", CLng(4), daily.LegalReceiptCount
  Expect "a new isFlashNearFull", False, status.isFlashNearFull
  status.isFlashNearFull = 1: Expect "isFlashNearFull = 1", True, status.isFlashNearFull
  On Error Resume Next
  daily.VatA = Array(1): Refused "VatA = an array", 13
  daily.VatA = status: Refused "VatA = a record", 13
  daily.noSuchProperty = 1: Refused "setting noSuchProperty", 438
  Expect "VatA after refusals", CDbl(3), daily.VatA
End Sub

Sub LinkProperties
  Dim link, first, other
  Set link = CreateObject(Library & "cPortProp")
  Set first = link.TCPClass
  Expect "a new TCPClass is Nothing", False, first Is Nothing
  Expect "TCPClass is the same on every read", True, first Is link.TCPClass
  Expect "a new SocketHnd", CLng(0), first.SocketHnd
  Expect "a new ErrorCode", CLng(0), first.ErrorCode
  Expect "a new ErrorDescription", "", first.ErrorDescription
  Set other = CreateObject(Library & "cTCPIP")
  Set link.TCPClass = other
  Expect "TCPClass is what was set", True, other Is link.TCPClass
  On Error Resume Next
  Set link.TCPClass = link: Refused "TCPClass = a cPortProp", 13
  On Error GoTo 0
  Expect "TCPClass after a refusal is what was set", True, other Is link.TCPClass
  Set link.TCPClass = Nothing
  Expect "TCPClass after Nothing is Nothing", False, link.TCPClass Is Nothing
  Expect "TCPClass after Nothing is the earlier one", False, other Is link.TCPClass
End Sub

Sub Refused(what, number)
  Dim got
  got = Err.Number
  Err.Clear
  Expect "Err.Number of " & what, CLng(number), got
End Sub
