// A receipt from JScript.
//
//   cscript //nologo receipt.js 127.0.0.1:9100
//
// JScript passes values only, so Result and Exresult never come back: what happened is read from properties and from
// records, which are objects and filled in place. Prefer a language with by-reference arguments where there is one.
//
// The release has this file in UTF-16, which every Windows reads. In the sources it is in UTF-8, which script hosts
// misread: run a converted copy (iconv -f UTF-8 -t CP1253 on a Greek machine).
var port = WScript.Arguments.length > 0 ? WScript.Arguments(0) : "127.0.0.1:9100";
var secondGeneration = 3;  // FISCAL_VARLENFISCAL2

var module = new ActiveXObject("VarlenFiscalQ7734.fiscalTrevikModule");
WScript.Echo("connecting to " + port);
module.Connect_(port, 0, "", true);
check(module.getFiscalType == secondGeneration, "no device on " + port);

module.ItemSale("Καφές ελληνικός", 2, 1.80, 24, 1, 0, "", true, "σκέτος");
module.ItemSale("Τυρόπιτα", 1, 2.20, 13, 2, 0, "", true);
check(module.StatusRead.isTransactionOpen, "no receipt is open");

var totals = new ActiveXObject("VarlenFiscalQ7734.clsTransTotal");
module.transactionTotals(totals, 0, "", true);
WScript.Echo("total " + totals.receiptTotalAmt.toFixed(2));
check(totals.receiptTotalAmt.toFixed(2) == "5.80", "an item was refused");

module.Payment(1, "ΜΕΤΡΗΤΑ", 10, 0, 0, 0, "", true);
check(!module.StatusRead.isTransactionOpen, "the receipt is still open");

module.DisConnect_(port, 0, "", true);
WScript.Echo("ok");

function check(condition, complaint) {
  if (condition) return;
  WScript.Echo("FAIL " + complaint);
  WScript.Quit(1);
}
