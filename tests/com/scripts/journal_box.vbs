' both: the journal with and without a journal box, another component's object: where the files go, and that the program
' gets that very object. Registers the box while it runs.
Option Explicit

Const Name = "ABC123456780042x"
Const BoxClass = "{8A0E6C1F-5B1D-4E0C-9C51-20D5647B1E93}"
Dim shell, files, bits, boxFile, journal
Set shell = CreateObject("WScript.Shell")
Set files = CreateObject("Scripting.FileSystemObject")
bits = 64
If shell.Environment("PROCESS")("PROCESSOR_ARCHITECTURE") = "x86" Then bits = 32
boxFile = WScript.Arguments(2) & "\..\..\..\win" & bits & "\tests\com\journal-box.dll"
Set journal = CreateObject("VarlenFiscalQ7734.FiscalJournal")

Unregister
Expect "bBox without a box", True, journal.bBox Is Nothing
On Error Resume Next
Set journal.bBox = files
Expect "assigning without a box", 91, CInt(Err.Number)
On Error GoTo 0
Save Array("c:\bbox", "c:\bboxBackUp")

Register
WithBox
Save Array("c:\journal")
Unregister
WScript.Echo "ok"

Sub WithBox
  Dim box, module, Result, Exresult
  Set box = journal.bBox
  Expect "the same box", True, journal.bBox Is box
  Expect "nothing assigned yet", vbEmpty, CInt(box)
  Set journal.bBox = files
  Expect "an object assigned", vbObject, CInt(box)

  ' Whatever is not one of ours is no record.
  Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
  On Error Resume Next
  module.transactionTotals box, Result, Exresult, True
  Expect "a box for a record", 13, CInt(Err.Number)
End Sub

' Files of an earlier run are gone before and the new ones are in the folders after. journal_box.sh looks into the
' box's second one, whose name a script here cannot write.
Sub Save(folders)
  Dim root
  For Each root In folders
    If files.FolderExists(root) Then files.DeleteFolder root, True
  Next
  Expect "EJFileSave", 0, CInt(journal.EJFileSave(Name, "Καφές", "υπογραφή"))
  For Each root In folders
    Expect "text in " & root, "Καφές" & vbCrLf, Content(root & "\ABC12345678\0042\" & Name & "_a.txt")
    Expect "signature in " & root, "υπογραφή" & vbCrLf, Content(root & "\ABC12345678\0042\" & Name & "_b.txt")
  Next
End Sub

Function Content(file)
  If Not files.FileExists(file) Then Content = "no file": Exit Function
  Content = files.OpenTextFile(file).ReadAll
End Function

Sub Register
  Registry "add HKCR\CLSID\" & BoxClass & "\InprocServer32 /ve /d """ & boxFile & """"
  Registry "add HKCR\quorndll_webupdate.box\CLSID /ve /d " & BoxClass
End Sub

Sub Unregister
  Registry "delete HKCR\quorndll_webupdate.box"
  Registry "delete HKCR\CLSID\" & BoxClass
End Sub

Sub Registry(change)
  shell.Run "reg " & change & " /f", 0, True
End Sub
