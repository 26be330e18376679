' A small till: connect, sell, handle refusals, pay, disconnect.
'
'   cscript //nologo till.vbs 127.0.0.1:9100
'
' The release has this file in UTF-16, which every Windows reads. In the sources it is in UTF-8, which script hosts
' misread: run a converted copy (iconv -f UTF-8 -t CP1253 on a Greek machine).
Option Explicit

' Every by-reference argument is a plain variable, so that the component can write to it.
Dim module, port, Result, Exresult, Suppress
Suppress = True

port = "127.0.0.1:9100"
If WScript.Arguments.Count > 0 Then port = WScript.Arguments(0)
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")

WScript.Echo "connecting to " & port
module.Connect_ port, Result, Exresult, Suppress
Require Succeeded("Connect_"), "connecting"
Dim serialNumber
module.getSerialNumber serialNumber, Result, Exresult, Suppress
Require Succeeded("getSerialNumber"), "finding a register"
WScript.Echo "register " & serialNumber

Require Sold("Καφές ελληνικός", 2, 1.80, 24), "selling coffee"
' The register has no VAT rate of 17 %.
If Not Sold("Τυρόπιτα", 1, 2.20, 17) Then Require Sold("Τυρόπιτα", 1, 2.20, 13), "a refused item"
If Not Sold("Νερό", "μισό", 0.50, 13) Then Require Sold("Νερό", "0,5", 0.50, 13), "an impossible quantity"
module.commentPrinterPrint "Σας ευχαριστούμε!", 1, Result, Exresult, Suppress
Require Succeeded("commentPrinterPrint"), "thanking"

Dim totals
Set totals = CreateObject("VarlenFiscalQ7734.clsTransTotal")
module.transactionTotals totals, Result, Exresult, Suppress
Require Succeeded("transactionTotals"), "asking for the total"
WScript.Echo "total " & FormatNumber(totals.receiptTotalAmt, 2)
' Change cannot be given on a card.
If Not Paid(2, "ΚΑΡΤΑ", 10) Then Require Paid(1, "ΜΕΤΡΗΤΑ", 10), "paying"

module.DisConnect_ port, Result, Exresult, Suppress
' A closed port is reported as 1, the value of the system call that closed it.
Require Result = 1, "disconnecting"
WScript.Echo "ok"

' The quantity is what somebody typed: a text that is a number is accepted.
Function Sold(description, quantity, price, vatRate)
  WScript.Echo "selling " & quantity & " x " & description
  Sold = False
  On Error Resume Next
  module.ItemSale description, quantity, price, vatRate, 1, Result, Exresult, Suppress
  If Err.Number <> 0 Then
    ' The call itself is invalid: nothing was sent, and the variables are unchanged.
    WScript.Echo "  error " & Err.Number
    Exit Function
  End If
  On Error GoTo 0
  Sold = Succeeded("ItemSale")
End Function

Function Paid(kind, description, amount)
  WScript.Echo "paying " & FormatNumber(amount, 2) & " " & description
  module.Payment kind, description, amount, 0, 0, Result, Exresult, Suppress
  Paid = Succeeded("Payment") And Not module.StatusRead.isTransactionOpen
End Function

Function Succeeded(step_)
  Succeeded = Result = 0
  If Result <> 0 Then WScript.Echo "  " & step_ & ": " & Result & " " & Exresult
End Function

Sub Require(done, step_)
  If done Then Exit Sub
  WScript.Echo "FAIL " & step_
  WScript.Quit 1
End Sub
