Attribute VB_Name = "TillModule"
' A small till, early bound: connect, sell, handle refusals, pay, disconnect. Not run here.
'
'   Till.exe 127.0.0.1:9100
'
' The release has this file in code page 1253 with CR LF, as Visual Basic reads it. In the sources it is in UTF-8:
' README.md says how to save a copy.
' The system's language for programs without Unicode has to be Greek.
Option Explicit

Private Register As VarlenFiscalQ7734.fiscalTrevikModule
' By-reference arguments are variables of exactly the declared types.
Private Result As Integer
Private Exresult As String
Private Suppress As Boolean

Public Sub Main()
  Dim Port As String, SerialNumber As String, Totals As VarlenFiscalQ7734.clsTransTotal
  On Error GoTo Impossible
  Suppress = True
  Port = "127.0.0.1:9100"
  If Command$ <> "" Then Port = Command$
  Set Register = New VarlenFiscalQ7734.fiscalTrevikModule

  Register.Connect_ Port, Result, Exresult, Suppress
  Require Succeeded("Connect_"), "connecting"
  Register.getSerialNumber SerialNumber, Result, Exresult, Suppress
  Require Succeeded("getSerialNumber"), "finding a register"
  Debug.Print "register " & SerialNumber

  Require Sold("Καφές ελληνικός", 2, 1.8, 24), "selling coffee"
  ' The register has no VAT rate of 17 %.
  If Not Sold("Τυρόπιτα", 1, 2.2, 17) Then Require Sold("Τυρόπιτα", 1, 2.2, 13), "a refused item"
  Require Sold("Νερό", 0.5, 0.5, 13), "selling water"
  ' A constant can be passed directly: the compiler makes a variable for it.
  Register.commentPrinterPrint "Σας ευχαριστούμε!", 1, Result, Exresult, Suppress
  Require Succeeded("commentPrinterPrint"), "thanking"

  ' A record to be filled must exist.
  Require Not Totalled(Totals), "totals into nothing"
  Set Totals = New VarlenFiscalQ7734.clsTransTotal
  Require Totalled(Totals), "asking for the total"
  Debug.Print "total " & Format$(Totals.receiptTotalAmt, "0.00")
  ' Change cannot be given on a card.
  If Not Paid(2, "ΚΑΡΤΑ", 10) Then Require Paid(1, "ΜΕΤΡΗΤΑ", 10), "paying"

  Register.DisConnect_ Port, Result, Exresult, Suppress
  ' A closed port is reported as 1, the value of the system call that closed it.
  Require Result = 1, "disconnecting"
  Debug.Print "ok"
  Exit Sub

Impossible:
  Debug.Print "FAIL " & Err.Number & " " & Err.Description
End Sub

' ByVal: the component gets this function's own variables.
Private Function Sold(ByVal Description As String, ByVal Quantity As Double, ByVal Price As Double, _
    ByVal VatRate As Double) As Boolean
  Dim Department As Integer
  Department = 1
  Debug.Print "selling " & Quantity & " x " & Description
  Register.ItemSale Description, Quantity, Price, VatRate, Department, Result, Exresult, Suppress
  Sold = Succeeded("ItemSale")
End Function

Private Function Paid(ByVal Kind As Integer, ByVal Description As String, ByVal Amount As Double) As Boolean
  Dim NoTerminal As Integer
  Debug.Print "paying " & Format$(Amount, "0.00") & " " & Description
  Register.Payment Kind, Description, Amount, NoTerminal, NoTerminal, Result, Exresult, Suppress
  Paid = Succeeded("Payment") And Not Register.StatusRead.isTransactionOpen
End Function

Private Function Totalled(Totals As VarlenFiscalQ7734.clsTransTotal) As Boolean
  On Error Resume Next
  Register.transactionTotals Totals, Result, Exresult, Suppress
  If Err.Number <> 0 Then
    ' The call itself is invalid: nothing was sent, and the variables are unchanged.
    Debug.Print "  error " & Err.Number & " " & Err.Description
  Else
    Totalled = Succeeded("transactionTotals")
  End If
End Function

Private Function Succeeded(ByVal Step_ As String) As Boolean
  Succeeded = Result = 0
  If Result <> 0 Then Debug.Print "  " & Step_ & ": " & Result & " " & Exresult
End Function

Private Sub Require(ByVal Done As Boolean, ByVal Step_ As String)
  If Done Then Exit Sub
  Debug.Print "FAIL " & Step_
  End
End Sub
