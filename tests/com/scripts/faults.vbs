' emulator: --fault "on 3/S//CODE code 116" --fault "on 3/S//ENDS paper-end" --fault "on 3/S//LATE late 300" --fault "on 3/S//NOISE noise" --fault "on 3/S//LOST lost" --fault "on 3/S//HALF half" --fault "on 3/S//S02 status 02" --fault "on 3/S//S04 status 04" --fault "on 3/S//S10 status 10" --fault "on 3/S//S40 status 40" --fault "on 3/S//S20 status 20" --fault "on 3/S//NAK nak" --fault "on 3/S//GONE lost" --fault "on 3/S//SILENT 4 silence"
' What a caller is told of each misbehaviour. Every price is a power of two, so that the receipt's total tells which
' items were booked, and that none was booked twice.
Option Explicit

Dim module, Result, Exresult, Suppress
Suppress = True
Set module = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
module.Connect_ WScript.Arguments(0), Result, Exresult, Suppress
Sell "PLAIN", 1, 0, "00/00/06/", 1
Sell "CODE", 2, 116, "receipt limit", 1
Sell "ENDS", 4, 25, "DEVICE STATUS:Tέλος Χαρτιού !", 1
Sell "LATE", 8, 0, "00/00/06/", 9
Sell "NOISE", 16, 0, Empty, 25
Sell "S02", 32, 0, "DEVICE ERROR:/ Σφάλμα Συσκευής !", 57
Sell "S04", 64, 0, "DEVICE STATUS:Tέλος Χαρτιού !", 121
Sell "S10", 128, 0, "DEVICE ERROR:/Αποσυνδεδεμένος Εκτυπωτής!", 249
Sell "S40", 256, 0, "DEVICE ERROR:/o Εκτυπωτής δεν απαντά!'" & Space(27), 505
Sell "S20", 512, 0, "00/20/06/", 1017
' After ten seconds without a reply the command goes out again, and the register answers it from its memory.
Sell "LOST", 1024, 0, "00/00/06/", 2041
Sell "HALF", 2048, 0, Empty, 4089
module.DisConnect_ WScript.Arguments(0), Result, Exresult, Suppress

module.Connect_ WScript.Arguments(1), Result, Exresult, Suppress
Sell "NAK", 4096, -207, "Αναμονή Απόκρισης Ταμειακής...", 4089
Sell "GONE", 8192, 0, "00/00/06/", 12281
Sell "SILENT", 16384, -3, "H ταμειακή δεν Απαντά!", 12281
module.DisConnect_ WScript.Arguments(1), Result, Exresult, Suppress
WScript.Echo "ok"

Sub Sell(description, price, code, text, total)
  Dim fields
  Result = Empty: Exresult = Empty
  module.ItemSale description, 1, price, 24, 1, Result, Exresult, Suppress
  Expect "Result of " & description, code, Result
  If Not IsEmpty(text) Then Expect "Exresult of " & description, text, Exresult
  Result = Empty: Exresult = Empty
  module.SendCommand_ "9/", Result, Exresult, Suppress, ""
  fields = Split(Exresult, "/")
  Expect "total after " & description, total & ".00", fields(9)
End Sub

Sub Expect(what, expected, actual)
  If VarType(expected) = VarType(actual) Then If expected = actual Then Exit Sub
  WScript.Echo "FAIL " & what & ": expected " & TypeName(expected) & " " & expected
  WScript.Echo "  got " & TypeName(actual) & " " & actual
End Sub
