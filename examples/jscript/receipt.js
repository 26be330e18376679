// A receipt from JScript.
//
//   cscript //nologo receipt.js [port]
//
// JScript passes values only, so Result and Exresult never come back: what happened is read from properties and from
// records, which are objects and filled in place. Prefer a language with by-reference arguments where there is one.
//
// This file is kept in UTF-8. Script hosts read the ANSI code page: on a Greek machine save a copy in code page 1253
// before running it (iconv -f UTF-8 -t CP1253).
var port = WScript.Arguments.length > 0 ? WScript.Arguments(0) : "COM1";
var secondGeneration = 3;  // FISCAL_VARLENFISCAL2

var module = new ActiveXObject("VarlenFiscalQ7734.fiscalTrevikModule");
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
