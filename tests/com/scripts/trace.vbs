' both: the trace's window shows the frames, and closes with the trace or with the last object; trace.sh looks at it.
Option Explicit

Dim files, folder, way
Set files = CreateObject("Scripting.FileSystemObject")
folder = files.GetParentFolderName(WScript.Arguments(2)) & "\"
For Each way In Array("switched", "released")
  Trace
  Await "closed." & way
Next
WScript.Echo "ok"

Sub Trace
  Dim module, Result, Exresult, Pass
  Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
  module.Connect_ WScript.Arguments(0), Result, Exresult, True
  module.activateDebug
  module.SendCommand_ "?/", Result, Exresult, True, Pass
  Expect "Result of a traced command", 0, Result
  Await "seen." & way
  If way = "switched" Then module.DeactivateDebug: Await "closed." & way
  Set module = Nothing
End Sub

' Until trace.sh has told; the runner ends a script that waits in vain.
Sub Await(news)
  Do Until files.FileExists(folder & news): Loop
End Sub
