#include "campaign/recovery.h"

#include <algorithm>
#include <cmath>

#include "records/cls_daily_acc.h"
#include "records/cls_trans_total.h"
#include "text/code_page.h"
#include "text/text.h"

namespace mirvane::campaign {
namespace {

constexpr int kTries = 10;

/// What the register tells, in this order; amounts in cents.
enum Field { kReceiptsToday, kLatestNumber, kLatestTotal, kOpenNow, kRemaining, kFields };

std::vector<std::string> splitAt(const std::string& text, char separator) {
  std::vector<std::string> pieces;
  for (const Text& piece : split(fromUtf8(text), static_cast<char16_t>(separator))) pieces.push_back(toUtf8(piece));
  return pieces;
}

/// The digits of "4.00", which are cents; -1 when it is no such number.
long cents(const Text& field) {
  std::string digits = toUtf8(field);
  if (digits.size() < 4 || digits[digits.size() - 3] != '.') return -1;
  digits.erase(digits.size() - 3, 1);
  const bool isNumber = std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; });
  return isNumber ? std::stol(digits) : -1;
}

}  // namespace

std::string Cashier::lookOnce() {
  const auto day = std::make_shared<clsDailyAcc>();
  const auto receipt = std::make_shared<clsTransTotal>();
  if (!till_.call("getDailyTotals", *day) || !till_.call("transactionTotals", *receipt)) return {};
  const bool isTold = till_.send(u"5/99/1/1/1/");
  std::string look = std::to_string(day->LegalReceiptCount) + ";" + std::to_string(receipt->receiptNumber) + ";" +
                     std::to_string(std::lround(receipt->receiptTotalAmt * 100));
  // No receipt is open, or a cash document.
  if (till_.Result == 64 || till_.Result == 67 || till_.Result == 68) return look + ";0;0";
  // Behind the result and the two status bytes stands what remains. What else stands there is the register's own.
  const std::vector<Text> fields = split(till_.Exresult, u'/');
  if (!isTold || fields.size() < 5 || cents(fields[3]) < 0) return {};
  return look + ";1;" + std::to_string(cents(fields[3]));
}

std::string Cashier::takeSnapshot() {
  std::string before;
  for (int i = 0; i < kTries; ++i) {
    std::string now = lookOnce();
    if (!now.empty() && now == before) return now;
    before = std::move(now);
  }
  return {};
}

std::string Cashier::judge(const std::string& what, long amount, const std::string& before, const std::string& now) {
  if (before.empty() || now.empty() || what == "comment") return "unknown";
  long b[kFields];
  long n[kFields];
  for (std::size_t i = 0; i < kFields; ++i) {
    b[i] = std::stol(splitAt(before, ';')[i]);
    n[i] = std::stol(splitAt(now, ';')[i]);
  }
  const bool isClosed = n[kOpenNow] == 0 && n[kReceiptsToday] == b[kReceiptsToday] + 1;
  if (what == "receipt") {
    if (isClosed && n[kLatestNumber] == b[kLatestNumber] + 1) return "committed";
    if (n[kReceiptsToday] == b[kReceiptsToday] && n[kLatestNumber] <= b[kLatestNumber] + 1) return "not committed";
    return "unknown";
  }
  if (now == before) return "not committed";
  const bool isStillOpen = n[kOpenNow] == 1 && n[kReceiptsToday] == b[kReceiptsToday];
  if (what == "line") {
    const long total = b[kOpenNow] == 1 ? b[kLatestTotal] : 0;
    return isStillOpen && n[kLatestTotal] == total + amount ? "committed" : "unknown";
  }
  // More than remains gives change.
  const long due = amount == 0 ? b[kRemaining] : std::min(amount, b[kRemaining]);
  const bool isLess = isStillOpen && n[kLatestTotal] == b[kLatestTotal] && n[kRemaining] == b[kRemaining] - due;
  return due > 0 && (isLess || (isClosed && due == b[kRemaining])) ? "committed" : "unknown";
}

void Cashier::save(const std::string& line) {
  for (const char byte : line + "\n") {
    if (file_.moment) file_.moment();
    file_.bytes += byte;
  }
}

Cashier::Answers Cashier::recover() {
  Answers answers;
  std::vector<std::string> receipt;
  std::vector<std::string> act;
  std::vector<std::string> was;
  for (const std::string& line : splitAt(file_.bytes, '\n')) {
    const std::vector<std::string> fields = splitAt(line, '|');
    // Cut by the end of the program; what it announces was not begun.
    if (fields.back() != ".") continue;
    if (fields[0] == "receipt") {
      receipt = fields;
      ++answers.receipts;
    }
    if (fields[0] == "do") {
      act = fields;
      was.clear();
      ++answers.acts;
    }
    if (fields[0] == "was") was = fields;
  }
  // A line that was cut stays by itself.
  save("");
  known_ = takeSnapshot();
  if (!act.empty() && was.empty()) {
    answers.last = judge(act[1], std::stol(act[2]), act[3], known_);
    if (!known_.empty()) save("was|" + answers.last + "|.");
  } else if (!was.empty()) {
    answers.last = was[1];
  }
  if (receipt.empty()) return answers;
  if (isWhollyPaid()) {
    till_.send(u"O/1/");
    known_ = takeSnapshot();
  }
  answers.receipt = judge("receipt", 0, receipt[1], known_);
  return answers;
}

bool Cashier::isWhollyPaid() const {
  if (known_.empty()) return false;
  const std::vector<std::string> fields = splitAt(known_, ';');
  return fields[kOpenNow] == "1" && fields[kRemaining] == "0" && fields[kLatestTotal] != "0";
}

void Cashier::beginReceipt() {
  known_ = takeSnapshot();
  save("receipt|" + known_ + "|.");
}

std::string Cashier::perform(const Act& act) {
  if (known_.empty()) known_ = takeSnapshot();
  // A register that does not tell where it stands is told nothing.
  if (known_.empty()) return "not committed";
  const std::string before = known_;
  save("do|" + act.what + "|" + std::to_string(act.amount) + "|" + before + "|.");
  const double euros = static_cast<double>(act.amount) / 100;
  if (act.what == "line" && euros > 0) till_.call("ItemSale", act.detail, 1.0, euros, 24.0, 1);
  if (act.what == "line" && euros < 0) till_.call("ItemVoid", act.detail, 1.0, -euros, 24.0, 1);
  if (act.what == "comment") till_.call("commentPrinterPrint", act.detail, 1);
  if (act.what == "cash") till_.call("Payment", 1, act.detail, euros, 0, 0);
  if (act.what == "card") till_.call("Payment", 2, act.detail, euros, 1, 1);
  known_ = takeSnapshot();
  std::string was = judge(act.what, act.amount, before, known_);
  save("was|" + was + "|.");
  return was;
}

}  // namespace mirvane::campaign
