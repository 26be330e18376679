' What a till does when a call fails. emulator: --fault "after 1 on 3/S paper-end"
'
'   cscript //nologo handle_errors.vbs 127.0.0.1:9100
'
' The release has this file in UTF-16, which every Windows reads. In the sources it is in UTF-8, which script hosts
' misread: run a converted copy (iconv -f UTF-8 -t CP1253 on a Greek machine).
Option Explicit

Dim module, port, Result, Exresult, Suppress
Suppress = True

port = "127.0.0.1:9100"
If WScript.Arguments.Count > 0 Then port = WScript.Arguments(0)
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
WScript.Echo "connecting to " & port
module.Connect_ port, Result, Exresult, Suppress
If Not Succeeded("Connect_") Then WScript.Quit 1

Sell "Καφές", 1, 1.80, 24
' The tests' register is out of paper now, as the first line says.
If Not Sell("Τυρόπιτα", 1, 2.20, 13) Then
  WScript.Echo "new paper, and once more"
  Sell "Τυρόπιτα", 1, 2.20, 13
End If
Sell "Νερό", 1, 0.50, 17
Sell "Νερό", "μισό", 0.50, 13
If module.StatusRead.isTransactionOpen Then
  module.VoidReceipt Result, Exresult, Suppress
  If Not Succeeded("VoidReceipt") Then WScript.Quit 1
End If
module.DisConnect_ port, Result, Exresult, Suppress
WScript.Echo "ok"

Function Sell(description, quantity, price, vatRate)
  WScript.Echo "selling " & description
  On Error Resume Next
  module.ItemSale description, quantity, price, vatRate, 1, Result, Exresult, Suppress
  If Err.Number <> 0 Then
    ' The call itself is invalid: nothing was sent, and the variables are unchanged.
    WScript.Echo "error " & Err.Number & ": a mistake in the program"
    Sell = False
    Exit Function
  End If
  On Error GoTo 0
  Sell = Succeeded("ItemSale")
End Function

Function Succeeded(what)
  Succeeded = Result = 0
  If Result > 0 Then WScript.Echo what & ": the register refuses, " & Result & " " & Exresult
  If Result < 0 Then WScript.Echo what & ": no register, " & Result & " " & Exresult
  If Result = 0 And InStr(Exresult, "DEVICE ") = 1 Then WScript.Echo what & ": done, but " & Exresult
End Function
