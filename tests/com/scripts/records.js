// both: every property of every record: what a new record holds, what it keeps, and what it refuses.
// Letters tell the types: i 16-bit, l 32-bit, y byte, d double, s text, b flag.
var records = {
  clsParam: "printerId i printerDescription s cashierDesc s printRECPluDepartment y drawerOpenonTotal y " +
    "printREConNoSale y printRECVATDetail y printRECFooterComments y printRECTopLogo i printRECBottomLogo i " +
    "printerUSeCutter y printerDrawerID i printerQuantityPrint y",
  clsTransTotal: "VatA d VatB d VatC d VatD d VatE d receiptNumber l receiptTotalAmt d",
  clsAccumulator: "Id i Desc s Count d Amount d",
  clsDailyAcc: "VatA d VatB d VatC d VatD d VatE d VatSum d LegalReceiptCount l illLegalReceiptCount l amtVoid d " +
    "amtRefund d amtCancel d amtPaymentType1 d amtPaymentType2 d amtPaymentType3 d amtDiscount d amtMarkUP d",
  clsStatus: "isFiscalFull b isDayOpen b isTransactionOpen b isInPayment b isEuro b isInPaidOut b isInROA b " +
    "isFlashNearFull b isFiscalNearFull b FiscalType i FiscalSN s",
  clsEFT: "eftId i eftEnabled i eftIP s eftPort l eftDescription s eftVariant i eftTimeout i bitmap_Main i " +
    "bitmap_2 i bitmap_3 i bitmap_4 i eftTID s eftMDW i MDW_ACQ s MDW_TID s eft_TRANS s eft_ECRIDFormat i",
  clseSendProps: "URL s QRURL s AES s PORT i",
  cPortProp: "tcpPort b comHandle l isConnected b"
};
var mismatch = 0x80020005, overflow = 0x8002000A;
var initial = { i: 0, l: 0, y: 0, d: 0, s: "", b: false };
var refusals = {
  i: [[32768, overflow], [-32769, overflow], ["abc", mismatch], [null, mismatch]],
  l: [[2147483648, overflow], ["1.2.3", mismatch], [null, mismatch]],
  y: [[256, overflow], [-1, overflow], ["x", mismatch]],
  d: [["abc", mismatch], ["", mismatch], [null, mismatch]],
  s: [[null, mismatch]],
  b: [["maybe", mismatch], [null, mismatch]]
};

for (var name in records) {
  var record = new ActiveXObject("VarlenFiscalQ7734." + name), words = records[name].split(" ");
  compare("new " + name, record, words, function (at) { return initial[words[at + 1]]; });
  for (var at = 0; at < words.length; at += 2) record[words[at]] = sample(at);
  compare(name, record, words, sample);
  // The other way round, so that no two flags can be one.
  for (at = 0; at < words.length; at += 2) if (words[at + 1] == "b") record[words[at]] = at == 0;
  compare("flags of " + name, record, words, function (at) { return words[at + 1] == "b" ? at == 0 : sample(at); });
}
WScript.Echo("ok");

function sample(at) {
  var samples = { i: -32768 + at, l: 70000 + at, y: 200 + at, d: at + 0.25, s: "κείμενο " + at, b: at % 4 == 0 };
  return samples[words[at + 1]];
}

function compare(what, record, words, value) {
  for (var at = 0; at < words.length; at += 2) {
    var member = words[at], tries = refusals[words[at + 1]];
    for (var i = 0; i < tries.length; ++i) {
      var code = 0;
      try { record[member] = tries[i][0]; } catch (error) { code = error.number >>> 0; }
      expect(what + "." + member + " = " + tries[i][0], tries[i][1], code);
    }
    expect(what + "." + member, value(at), record[member]);
  }
}

function expect(what, expected, actual) {
  if (expected === actual) return;
  WScript.Echo("FAIL " + what + ": expected " + typeof expected + " " + expected);
  WScript.Echo("  got " + typeof actual + " " + actual);
}
