// A small till: connect, sell, handle refusals, pay, disconnect.
//
//   cscript //nologo till.js 127.0.0.1:9100
//
// JScript passes values only, so Result and Exresult never come back: what happened is read from the status and from
// records, which are objects and filled in place. README.md describes the limits.
//
// The release has this file in UTF-16, which every Windows reads. In the sources it is in UTF-8, which script hosts
// misread: run a converted copy (iconv -f UTF-8 -t CP1253 on a Greek machine).
var port = WScript.Arguments.length > 0 ? WScript.Arguments(0) : "127.0.0.1:9100";
var secondGeneration = 3;  // FISCAL_VARLENFISCAL2
var module = new ActiveXObject("VarlenFiscalQ7734.fiscalTrevikModule");

WScript.Echo("connecting to " + port);
module.Connect_(port, 0, "", true);
require(module.getFiscalType == secondGeneration, "connecting");

require(sold("Καφές ελληνικός", 2, 1.80, 24), "selling coffee");
// The register has no VAT rate of 17 %.
require(!sold("Τυρόπιτα", 1, 2.20, 17) && sold("Τυρόπιτα", 1, 2.20, 13), "a refused item");
require(!sold("Νερό", "μισό", 0.50, 13) && sold("Νερό", "0,5", 0.50, 13), "an impossible quantity");
module.commentPrinterPrint("Σας ευχαριστούμε!", 1, 0, "", true);

WScript.Echo("total " + total().toFixed(2));
// Change cannot be given on a card.
require(!paid(2, "ΚΑΡΤΑ", 10) && paid(1, "ΜΕΤΡΗΤΑ", 10), "paying");

module.DisConnect_(port, 0, "", true);
WScript.Echo("ok");

// What is on the receipt. Uses a new record, because a failed call leaves an old one as it was.
function total() {
  var totals = new ActiveXObject("VarlenFiscalQ7734.clsTransTotal");
  module.transactionTotals(totals, 0, "", true);
  return totals.receiptTotalAmt;
}

// Whether the item is on the receipt: its total has grown. The reason is lost.
function sold(description, quantity, price, vatRate) {
  WScript.Echo("selling " + quantity + " x " + description);
  var before = total();
  try {
    module.ItemSale(description, quantity, price, vatRate, 1, 0, "", true);
  } catch (error) {
    // The call itself is invalid: nothing was sent.
    WScript.Echo("  error " + (error.number + 0x100000000).toString(16));
    return false;
  }
  return total() > before;
}

function paid(kind, description, amount) {
  WScript.Echo("paying " + amount.toFixed(2) + " " + description);
  module.Payment(kind, description, amount, 0, 0, 0, "", true);
  module.printerStatusRead(0, "", true);
  return !module.StatusRead.isTransactionOpen;
}

function require(done, step) {
  if (done) return;
  WScript.Echo("FAIL " + step);
  WScript.Quit(1);
}
