' both: the journal with and without a journal box, another component's object: where the files go, and that the program
' gets that very object. Registers the box while it runs.
Option Explicit

Const Name = "ABC123456780042x"
Dim shell, files, boxFile, journal, outcome
Set shell = CreateObject("WScript.Shell")
Set files = CreateObject("Scripting.FileSystemObject")
boxFile = BuildFolder(WScript.Arguments(2)) & "\win" & Bits & "\tests\journal-box.dll"
Set journal = CreateObject("VarlenFiscalQ7734.FiscalJournal")

Register "/u "
Expect "bBox without a box", True, journal.bBox Is Nothing
On Error Resume Next
Set journal.bBox = files
Expect "assigning without a box", 91, CInt(Err.Number)
On Error GoTo 0
Save "c:\bbox", "c:\bboxBackUp"

Register ""
WithBox
Save "c:\journal", "c:\copies"
Expect "box after saving", False, journal.bBox Is Nothing
Register "/u "
WScript.Echo "ok"

Sub WithBox
  Dim box, module, Result, Exresult
  Set box = journal.bBox
  Expect "the same box", True, journal.bBox Is box
  Expect "nothing assigned yet", vbEmpty, CInt(box)
  Set journal.bBox = files
  Expect "an object assigned", vbObject, CInt(box)
  Expect "still the same box", True, journal.bBox Is box

  ' Whatever is not one of ours is no record.
  Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
  On Error Resume Next
  module.transactionTotals box, Result, Exresult, True
  Expect "a box for a record", 13, CInt(Err.Number)
End Sub

' Files of an earlier run are gone before and the new ones are in both folders after.
Sub Save(folder, copies)
  Dim root
  For Each root In Array(folder, copies)
    If files.FolderExists(root) Then files.DeleteFolder root, True
  Next
  outcome = journal.EJFileSave(Name, "Καφές", "υπογραφή")
  Expect "EJFileSave", 0, CInt(outcome)
  For Each root In Array(folder, copies)
    Expect "text in " & root, "Καφές" & vbCrLf, Content(root & "\ABC12345678\0042\" & Name & "_a.txt")
    Expect "signature in " & root, "υπογραφή" & vbCrLf, Content(root & "\ABC12345678\0042\" & Name & "_b.txt")
  Next
End Sub

Function Content(file)
  If Not files.FileExists(file) Then Content = "no file": Exit Function
  Content = files.OpenTextFile(file).ReadAll
End Function

Function BuildFolder(paper)
  BuildFolder = files.GetParentFolderName(files.GetParentFolderName(files.GetParentFolderName(paper)))
End Function

Function Bits
  Bits = 64
  If shell.Environment("PROCESS")("PROCESSOR_ARCHITECTURE") = "x86" Then Bits = 32
End Function

Sub Register(undo)
  shell.Run "regsvr32 /s " & undo & boxFile, 0, True
End Sub
