' Stands behind every VBScript test when it runs: type and value have to be the expected ones.
Sub Expect(what, expected, actual)
  If VarType(expected) = VarType(actual) Then If expected = actual Then Exit Sub
  WScript.Echo "FAIL " & what & ": expected " & TypeName(expected) & " " & expected
  WScript.Echo "  got " & TypeName(actual) & " " & actual
End Sub
