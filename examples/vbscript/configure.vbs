' Setting the register up: header, VAT rates, departments, settings, VAT number, server.
'
'   cscript //nologo configure.vbs 127.0.0.1:9100
'
' The release has this file in UTF-16, which every Windows reads. In the sources it is in UTF-8, which script hosts
' misread: run a converted copy (iconv -f UTF-8 -t CP1253 on a Greek machine).
Option Explicit

Dim module, port, Result, Exresult, Suppress, Pass
Suppress = True

If WScript.Arguments.Count = 0 Then
  WScript.Echo "This changes the register's settings. Give its port, for the emulator:" & vbCrLf & _
    "cscript //nologo """ & WScript.ScriptFullName & """ 127.0.0.1:9100"
  WScript.Quit 2
End If
port = WScript.Arguments(0)
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
WScript.Echo "connecting to " & port
module.Connect_ port, Result, Exresult, Suppress
Check "Connect_"

module.setHeader "ΚΑΦΕ ΑΙΓΑΙΟ", 3, "ΠΛΑΤΕΙΑ 1, 84100 ΣΥΡΟΣ", 1, "", 1, "", 1, "ΔΟΥ ΣΥΡΟΥ", 1, Result, Exresult, Suppress
Check "setHeader"
WScript.Echo "the header is set"
module.setVatCategories 24, 13, 6, 36, 0, Result, Exresult, Suppress
Check "setVatCategories"
WScript.Echo Exresult
module.setCategory 2, "Ποτά", Result, Exresult, Suppress
Check "setCategory"
NameDepartment 3, "ΑΝΑΨΥΚΤΙΚΑ", 2
SetCashier "ΜΑΡΙΑ"
module.setVATNumber "123456789", Result, Exresult, Suppress, Pass
Check "setVATNumber"
WScript.Echo "the VAT number is sent: compare it with the slip"
SetServer "https://tax/in.php|https://tax/qr", "443", String(64, "A")

module.DisConnect_ port, Result, Exresult, Suppress
WScript.Echo "ok"

' setDepartment does nothing; this is the register's own command. No "/" and no accents in the name.
Sub NameDepartment(number, name, category)
  module.SendCommand_ "d/" & number & "/" & name & "/" & category & "/", Result, Exresult, Suppress, Pass
  Check "department " & number
  WScript.Echo "department " & number & " is " & name
End Sub

Sub SetCashier(name)
  Dim settings
  Set settings = CreateObject("VarlenFiscalQ7734.clsParam")
  module.settingsRead settings, Result, Exresult, Suppress
  Check "settingsRead"
  settings.cashierDesc = name
  ' Each assignment inverts it, and so did reading: this restores the register's value.
  settings.useLCDdisplay = settings.useLCDdisplay
  module.settingsWrite settings, Result, Exresult, Suppress
  Check "settingsWrite"
  WScript.Echo "the cashier is " & settings.cashierDesc
End Sub

Sub SetServer(addresses, serverPort, key)
  Dim active, readAddresses, readPort, readKey
  module.setServerSettings 1, addresses, serverPort, key, Result, Exresult, Suppress, Pass
  Check "setServerSettings"
  module.getServerSettings active, readAddresses, readPort, readKey, Result, Exresult, Suppress, Pass
  Check "getServerSettings"
  WScript.Echo "server " & readAddresses & ", port " & readPort & ", active " & active
End Sub

Sub Check(step_)
  If Result = 0 Then Exit Sub
  WScript.Echo "FAIL " & step_ & ": " & Result & " " & Exresult
  WScript.Quit 1
End Sub
