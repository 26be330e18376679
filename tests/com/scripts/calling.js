// both: JScript passes values and gets no outputs; what is impossible is an exception, and sends nothing.
var typeMismatch = 0x80020005, overflow = 0x8002000A;
var module = new ActiveXObject("VarlenFiscalQ7734.fiscalTrevikModule");
var totals = new ActiveXObject("VarlenFiscalQ7734.clsTransTotal");
module.Connect_(WScript.Arguments(0), 0, "", true);
module.ItemSale("Νερό / λίτρα", "1,5", 0.5, 13, 2, undefined, undefined, true, "", 2);

refused("a text for a number", typeMismatch, function () { module.ItemSale("x", "abc", 1, 24, 1, 0, "", true); });
refused("a number too large", overflow, function () { module.ItemSale("x", 1, 1, 24, 40000, 0, "", true); });
refused("NaN for a number", 0, function () { module.ItemSale("x", NaN, 1, 24, 1, 0, "", true); });
refused("no end to a number", 0, function () { module.ItemSale("x", 1, Infinity, 24, 1, 0, "", true); });
refused("an unknown member", 0, function () { module.noSuchMember(1); });

module.transactionTotals(totals, 0, "", true);
if (totals.receiptTotalAmt !== 0.75) WScript.Echo("FAIL the receipt amounts to " + totals.receiptTotalAmt);
module.DisConnect_(WScript.Arguments(0), 0, "", true);
WScript.Echo("ok");

// refused: calling it is an error of that number; 0 stands for any.
function refused(what, number, call) {
  try {
    call();
  } catch (error) {
    if (number && error.number >>> 0 !== number) WScript.Echo("FAIL error of " + what + ": " + error.number);
    return;
  }
  WScript.Echo("FAIL " + what + ": expected an error, got none");
}
