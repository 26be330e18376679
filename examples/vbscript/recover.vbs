' A till that can be killed at any moment. At its next start it says what happened to its last receipt and payment.
'
'   cscript //nologo recover.vbs 127.0.0.1:9100
'
' The release has this file in UTF-16, which every Windows reads. In the sources it is in UTF-8, which script hosts
' misread: run a converted copy (iconv -f UTF-8 -t CP1253 on a Greek machine).
Option Explicit

' What a snapshot of the register holds, in this order; amounts in cents.
Const ReceiptsToday = 0, LatestNumber = 1, LatestTotal = 2, OpenNow = 3, Remaining = 4

Dim module, files, port, savedTo, known, Result, Exresult, Suppress, Pass
Suppress = True

port = "127.0.0.1:9100"
If WScript.Arguments.Count > 0 Then port = WScript.Arguments(0)
Set files = CreateObject("Scripting.FileSystemObject")
savedTo = files.GetParentFolderName(WScript.ScriptFullName) & "\recover.txt"
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
WScript.Echo "connecting to " & port
module.Connect_ port, Result, Exresult, Suppress
If Result <> 0 Then Fail "Connect_: " & Result & " " & Exresult
module.GetVersionInfo Result, Exresult, Suppress, Pass
If Result <> 0 Then Fail "no register on " & port & ": " & Result & " " & Exresult

Recover
If IsReceiptOpen Then
  WScript.Echo "finish or cancel the receipt that is open"
Else
  BeginReceipt
  Perform "line", 500, "Καφές"
  Perform "line", 220, "Τυρόπιτα"
  Perform "comment", 0, "Σας ευχαριστούμε!"
  Perform "cash", 300, "ΜΕΤΡΗΤΑ"
  Perform "card", 420, "ΚΑΡΤΑ"
End If
module.DisConnect_ port, Result, Exresult, Suppress
WScript.Echo "ok"

' Says what happened to what an earlier run of this program had started.
Sub Recover
  Dim line, fields, receipt, act, was
  If files.FileExists(savedTo) Then
    For Each line In Split(files.OpenTextFile(savedTo).ReadAll, vbCrLf)
      fields = Split(line & "|", "|")
      ' A line without its end was cut off when the program ended; what it announces was not started.
      If Right(line, 2) <> "|." Then fields = Array("")
      If fields(0) = "receipt" Then receipt = fields
      If fields(0) = "do" Then
        act = fields
        was = Empty
      End If
      If fields(0) = "was" Then was = fields(1)
    Next
  End If
  ' A line that was cut off stays separate.
  Save ""
  known = TakeSnapshot
  If IsArray(act) Then
    If IsEmpty(was) Then
      was = Judge(act(1), CLng(act(2)), act(3), known)
      If known <> "" Then Save "was|" & was & "|."
    End If
    WScript.Echo "last " & act(1) & ", " & act(2) & ": " & was
  End If
  If Not IsArray(receipt) Then Exit Sub
  If IsWhollyPaid Then
    module.SendCommand_ "O/1/", Result, Exresult, Suppress, Pass
    known = TakeSnapshot
  End If
  WScript.Echo "last receipt: " & Judge("receipt", 0, receipt(1), known)
End Sub

Sub BeginReceipt
  known = TakeSnapshot
  Save "receipt|" & known & "|."
End Sub

' Saves the step, takes it, and finds out what happened, whatever the call returned.
Sub Perform(what, amount, detail)
  Dim before, was
  If known = "" Then known = TakeSnapshot
  ' Without a snapshot of the register nothing is sent to it.
  If known = "" Then Fail "the register does not answer"
  before = known
  Save "do|" & what & "|" & amount & "|" & before & "|."
  On Error Resume Next
  Select Case what
    Case "line": module.ItemSale detail, 1, amount / 100, 24, 1, Result, Exresult, Suppress
    Case "comment": module.commentPrinterPrint detail, 1, Result, Exresult, Suppress
    Case "cash": module.Payment 1, detail, amount / 100, 0, 0, Result, Exresult, Suppress
    Case "card": module.Payment 2, detail, amount / 100, 1, 1, Result, Exresult, Suppress
  End Select
  On Error GoTo 0
  known = TakeSnapshot
  was = Judge(what, amount, before, known)
  Save "was|" & was & "|."
  WScript.Echo what & ", " & amount & ": " & was
End Sub

' "committed", "not committed" or "unknown", from the snapshots before and now.
Function Judge(what, amount, before, now)
  Dim b, n, due, total, isClosed, isStillOpen
  Judge = "unknown"
  If before = "" Or now = "" Or what = "comment" Then Exit Function
  b = FieldsOf(before)
  n = FieldsOf(now)
  isClosed = n(OpenNow) = 0 And n(ReceiptsToday) = b(ReceiptsToday) + 1
  isStillOpen = n(OpenNow) = 1 And n(ReceiptsToday) = b(ReceiptsToday)
  If what = "receipt" Then
    If n(ReceiptsToday) = b(ReceiptsToday) And n(LatestNumber) <= b(LatestNumber) + 1 Then Judge = "not committed"
    If isClosed And n(LatestNumber) = b(LatestNumber) + 1 Then Judge = "committed"
  ElseIf now = before Then
    Judge = "not committed"
  ElseIf what = "line" Then
    total = amount
    If b(OpenNow) = 1 Then total = b(LatestTotal) + amount
    If isStillOpen And n(LatestTotal) = total Then Judge = "committed"
  Else
    ' Anything above the remaining amount is change.
    due = amount
    If due = 0 Or due > b(Remaining) Then due = b(Remaining)
    If due <= 0 Then Exit Function
    If isStillOpen And n(LatestTotal) = b(LatestTotal) And n(Remaining) = b(Remaining) - due Then Judge = "committed"
    If isClosed And due = b(Remaining) Then Judge = "committed"
  End If
End Function

' A snapshot of the register; empty if no two in a row are equal.
Function TakeSnapshot
  Dim before, now, tries
  TakeSnapshot = ""
  For tries = 1 To 10
    now = LookOnce
    If now <> "" And now = before Then
      TakeSnapshot = now
      Exit Function
    End If
    before = now
  Next
End Function

Function LookOnce
  Dim day, receipt, fields, totals
  LookOnce = ""
  Set day = CreateObject("VarlenFiscalQ7734.clsDailyAcc")
  Set receipt = CreateObject("VarlenFiscalQ7734.clsTransTotal")
  On Error Resume Next
  module.getDailyTotals day, Result, Exresult, Suppress
  If Err.Number <> 0 Or Result <> 0 Then Exit Function
  module.transactionTotals receipt, Result, Exresult, Suppress
  If Err.Number <> 0 Or Result <> 0 Then Exit Function
  module.SendCommand_ "5/99/1/1/1/", Result, Exresult, Suppress, Pass
  If Err.Number <> 0 Then Exit Function
  On Error GoTo 0
  totals = day.LegalReceiptCount & ";" & receipt.receiptNumber & ";" & CLng(receipt.receiptTotalAmt * 100)
  ' No receipt is open, or a cash document is.
  If Result = 64 Or Result = 67 Or Result = 68 Then LookOnce = totals & ";0;0"
  fields = Split(Exresult, "/")
  If Result <> 0 Or UBound(fields) < 4 Then Exit Function
  ' After the result and the two status bytes comes the remaining amount. Registers differ in the other fields.
  If Cents(fields(3)) >= 0 Then LookOnce = totals & ";1;" & Cents(fields(3))
End Function

' The digits of "4.00", which are cents; -1 if it is not such a number.
Function Cents(field)
  Cents = -1
  If Len(field) < 4 Or Left(Right(field, 3), 1) <> "." Then Exit Function
  If IsNumeric(Replace(field, ".", "")) Then Cents = CLng(Replace(field, ".", ""))
End Function

Function FieldsOf(picture)
  Dim fields, i
  fields = Split(picture, ";")
  For i = 0 To UBound(fields)
    fields(i) = CLng(fields(i))
  Next
  FieldsOf = fields
End Function

Function IsReceiptOpen
  Dim fields
  IsReceiptOpen = False
  If known = "" Then Exit Function
  fields = FieldsOf(known)
  IsReceiptOpen = fields(OpenNow) = 1
End Function

Function IsWhollyPaid
  Dim fields
  IsWhollyPaid = False
  If Not IsReceiptOpen Then Exit Function
  fields = FieldsOf(known)
  IsWhollyPaid = fields(Remaining) = 0 And fields(LatestTotal) <> 0
End Function

Sub Save(line)
  Dim file
  Const ForAppending = 8
  Set file = files.OpenTextFile(savedTo, ForAppending, True)
  file.WriteLine line
  file.Close
End Sub

Sub Fail(why)
  WScript.Echo "FAIL " & why
  WScript.Quit 1
End Sub
