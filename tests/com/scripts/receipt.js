// both: a receipt from JScript, which passes values and gets no outputs; what is impossible is an exception.
var port = WScript.Arguments(0), suppress = true;
var typeMismatch = 0x80020005, overflow = 0x8002000A;
var module = new ActiveXObject("VarlenFiscalQ7734.fiscalTrevikModule");

expect("getFiscalType at first", 0, module.getFiscalType);
module.Connect_(port, 0, "", suppress);
expect("getFiscalType", 3, module.getFiscalType);

module.ItemSale("Καφές ελληνικός", 2, 1.8, 24, 1, 0, "", suppress, "σκέτος", 1);
module.ItemSale("Τυρόπιτα", 3, "2.20", 13, 2, 0, "", suppress);
module.ItemSale("Νερό / λίτρα", "1,5", 0.5, 13, 2, undefined, undefined, suppress, "", 2);
module.ItemSale("Βιβλίο", 1, 9.9, 6, 3, 0, "", suppress);
module.ItemVoid("Τυρόπιτα", 1, 2.2, 13, 2, 0, "", suppress);
module.commentPrinterPrint("Ευχαριστούμε!", 1, 0, "", suppress);
expect("isTransactionOpen", true, module.StatusRead.isTransactionOpen);

refused("a text for a number", typeMismatch, function () { module.ItemSale("x", "abc", 1, 24, 1, 0, "", suppress); });
refused("a number too large", overflow, function () { module.ItemSale("x", 1, 1, 24, 40000, 0, "", suppress); });
refused("NaN for a number", 0, function () { module.ItemSale("x", NaN, 1, 24, 1, 0, "", suppress); });
refused("no end to a number", 0, function () { module.ItemSale("x", 1, Infinity, 24, 1, 0, "", suppress); });
refused("an unknown member", 0, function () { module.noSuchMember(1); });

module.Payment(1, "ΜΕΤΡΗΤΑ", 20, 0, 0, 0, "", suppress);
expect("isTransactionOpen after Payment", false, module.StatusRead.isTransactionOpen);
module.DisConnect_(port, 0, "", suppress);
WScript.Echo("ok");

// refused: calling it is an error of that number; 0 stands for any.
function refused(what, number, call) {
  try {
    call();
  } catch (error) {
    if (number) expect("error of " + what, number, error.number >>> 0);
    return;
  }
  WScript.Echo("FAIL " + what + ": expected an error, got none");
}

function expect(what, expected, actual) {
  if (expected === actual) return;
  WScript.Echo("FAIL " + what + ": expected " + typeof expected + " " + expected);
  WScript.Echo("  got " + typeof actual + " " + actual);
}
