Attribute VB_Name = "TillModule"
' A small till, late bound: connect, sell, handle refusals, pay, disconnect. Not run here.
'
' The release has this file in code page 1253, as the editor imports it. In the sources it is in UTF-8: README.md says
' how to save a copy. The system's language for programs without Unicode has to be Greek.
Option Explicit

Private Register As Object
' The component writes to these.
Private Result As Integer
Private Exresult As String
Private Suppress As Boolean

Public Sub Till()
  Dim Port As String, SerialNumber As String, Totals As Object
  Suppress = True
  Port = "127.0.0.1:9100"
  Set Register = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")

  Register.Connect_ Port, Result, Exresult, Suppress
  If Not Succeeded("Connect_") Then Exit Sub
  Register.getSerialNumber SerialNumber, Result, Exresult, Suppress
  If Not Succeeded("getSerialNumber") Then Exit Sub
  Debug.Print "register " & SerialNumber

  If Not Sold("Καφές ελληνικός", 2, 1.8, 24) Then Exit Sub
  ' The register has no VAT rate of 17 %.
  If Not Sold("Τυρόπιτα", 1, 2.2, 17) Then
    If Not Sold("Τυρόπιτα", 1, 2.2, 13) Then Exit Sub
  End If
  If Not Sold("Νερό", "μισό", 0.5, 13) Then
    If Not Sold("Νερό", "0,5", 0.5, 13) Then Exit Sub
  End If
  Register.commentPrinterPrint "Σας ευχαριστούμε!", 1, Result, Exresult, Suppress
  If Not Succeeded("commentPrinterPrint") Then Exit Sub

  Set Totals = CreateObject("VarlenFiscalQ7734.clsTransTotal")
  Register.transactionTotals Totals, Result, Exresult, Suppress
  If Not Succeeded("transactionTotals") Then Exit Sub
  Debug.Print "total " & Format$(Totals.receiptTotalAmt, "0.00")
  ' Change cannot be given on a card.
  If Not Paid(2, "ΚΑΡΤΑ", 10) Then
    If Not Paid(1, "ΜΕΤΡΗΤΑ", 10) Then Exit Sub
  End If

  Register.DisConnect_ Port, Result, Exresult, Suppress
  ' A closed port is reported as 1, the value of the system call that closed it.
  If Result = 1 Then Debug.Print "ok"
End Sub

' The quantity is what somebody typed, a cell for instance: a text that is a number is accepted.
Private Function Sold(ByVal Description As String, ByVal Quantity As Variant, ByVal Price As Double, _
    ByVal VatRate As Double) As Boolean
  Debug.Print "selling " & Quantity & " x " & Description
  On Error Resume Next
  Register.ItemSale Description, Quantity, Price, VatRate, 1, Result, Exresult, Suppress
  If Err.Number <> 0 Then
    ' The call itself is invalid: nothing was sent, and the variables are unchanged.
    Debug.Print "  error " & Err.Number & " " & Err.Description
  Else
    Sold = Succeeded("ItemSale")
  End If
End Function

Private Function Paid(ByVal Kind As Integer, ByVal Description As String, ByVal Amount As Double) As Boolean
  Debug.Print "paying " & Format$(Amount, "0.00") & " " & Description
  Register.Payment Kind, Description, Amount, 0, 0, Result, Exresult, Suppress
  Paid = Succeeded("Payment") And Not Register.StatusRead.isTransactionOpen
End Function

Private Function Succeeded(ByVal Step_ As String) As Boolean
  Succeeded = Result = 0
  If Result <> 0 Then Debug.Print "  " & Step_ & ": " & Result & " " & Exresult
End Function
