#include "service/register.h"

#include <algorithm>
#include <cmath>

#include "protocol/command.h"
#include "protocol/reply.h"
#include "records/cls_daily_acc.h"
#include "records/cls_eft.h"
#include "records/cls_status.h"
#include "records/cls_trans_total.h"
#include "text/text.h"

namespace mirvane::service {
namespace {

constexpr int kLooks = 10;
/// A card payment that is with its terminal.
constexpr std::int16_t kCardUnderWay = 158;
constexpr std::int16_t kPaperEnd = 25;
/// What ends by itself, or when somebody sees to it: busy, user browsing, no paper, printer off, closing, tray open …
constexpr std::int16_t kMended[] = {14, 20, 21, 23, 25, 26, 41, 42, 44, 62, 81, 100, 146};
/// The condition of the printer stands in the place of what was asked for.
constexpr TextView kCondition = u"DEVICE ";
constexpr TextView kPaperCondition = u"DEVICE STATUS:";

Cents centsOf(double amount) { return std::llround(amount * 100); }

/// The digits of "4.00"; nothing when it is no such number.
std::optional<Cents> centsIn(const Text& field) {
  std::string digits = toUtf8(field);
  if (digits.size() < 4 || digits[digits.size() - 3] != '.') return std::nullopt;
  digits.erase(digits.size() - 3, 1);
  const bool isNumber = std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; });
  return isNumber && digits.size() < 15 ? std::optional(std::stoll(digits)) : std::nullopt;
}

/// What a code and a text tell of who is to help.
Wait waitOf(std::int16_t code, const Text& text) {
  const bool isPaper = code == kPaperEnd || text.starts_with(kPaperCondition);
  return {isPaper ? "paper" : code == kCardUnderWay ? "card" : "register", code, toUtf8(text)};
}

}  // namespace

// ---- What the component finds around it

/// Has no one in front of it: what it would show goes to the board, and boxes close by themselves.
class Register::Screen : public platform::Screen {
 public:
  explicit Screen(Register& whose) : whose_(whose) {}

  void messageBox(TextView, std::uint32_t, TextView) override {}
  void waitWhile(const platform::WaitText& text, const std::function<bool(platform::WaitView&)>& tick) override {
    View view(whose_, text);
    do whose_.pass(1000);
    while (tick(view));
  }
  std::unique_ptr<platform::WaitView> showWait(const platform::WaitText& text) override {
    return std::make_unique<View>(whose_, text);
  }
  std::unique_ptr<platform::JournalView> showJournal() override { return std::make_unique<Journal>(); }
  void serveWindows() override {}
  void showTrace(bool) override {}
  void traceLine(TextView) override {}

 private:
  class View : public platform::WaitView {
   public:
    View(Register& whose, const platform::WaitText& text) : whose_(whose) { show(text); }
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    ~View() override { whose_.goOn(); }
    void show(const platform::WaitText& text) override {
      // The state ends in the code: "Κατάσταση [14]".
      const std::size_t from = text.state.rfind(u'[') + 1;
      const std::int16_t code = toInt(text.state.substr(from, text.state.rfind(u']') - from));
      whose_.waitFor(waitOf(code, text.message));
    }
    void repaint() override {}

   private:
    Register& whose_;
  };
  class Journal : public platform::JournalView {
    void beginFile(TextView) override {}
    void append(TextView, std::size_t) override {}
    void processEvents() override {}
  };

  Register& whose_;
};

/// Hands the journal's files over to the service, once each; nothing else is written.
class Register::Files : public platform::Files {
 public:
  Files(platform::Files& below, std::function<bool(const std::string&, std::string_view)> keep)
      : below_(below), keep_(std::move(keep)) {}

  Text componentFolder() override { return below_.componentFolder(); }
  std::optional<std::string> read(TextView path) override { return below_.read(path); }
  bool makeFolder(TextView) override { return true; }
  bool replace(TextView path, std::string_view bytes) override {
    const std::size_t slash = path.rfind(u'\\');
    // The copy is of no use in one and the same database.
    return path.find(u"BackUp") != TextView::npos || keep_(toUtf8(path.substr(slash + 1)), bytes);
  }
  bool isFolder(TextView folder) override { return below_.isFolder(folder); }
  std::vector<Text> fileNames(TextView folder) override { return below_.fileNames(folder); }
  std::optional<std::uint64_t> fileSize(TextView path) override { return below_.fileSize(path); }
  std::unique_ptr<platform::GrowingFile> grow(TextView path) override { return below_.grow(path); }
  void remove(TextView path) override { below_.remove(path); }

 private:
  platform::Files& below_;
  const std::function<bool(const std::string&, std::string_view)> keep_;
};

// ---- Pictures

http::Json Picture::json() const {
  return {{"day", day},
          {"receipts", receipts},
          {"cashDocuments", cashDocuments},
          {"number", number},
          {"open", static_cast<int>(open)},
          {"total", total},
          {"remaining", remaining}};
}

std::optional<Picture> Picture::from(const http::Json& json) {
  const auto number = [&json](const char* name) {
    const http::Json* value = json.find(name);
    const auto* told = value ? value->as<double>() : nullptr;
    return told ? static_cast<Cents>(*told) : 0;
  };
  if (!json.find("day")) return std::nullopt;
  return Picture{static_cast<int>(number("day")),
                 static_cast<int>(number("receipts")),
                 static_cast<int>(number("cashDocuments")),
                 static_cast<int>(number("number")),
                 static_cast<Open>(number("open")),
                 number("total"),
                 number("remaining")};
}

Register::Register(platform::Platform& machine, Board& board, Text port, TextView recordFolder,
                   std::function<bool(const std::string&, std::string_view)> keepFile)
    : machine_(machine),
      board_(board),
      port_(std::move(port)),
      screen_(std::make_unique<Screen>(*this)),
      files_(std::make_unique<Files>(machine.files, std::move(keepFile))),
      platform_{machine.serial, machine.sockets, machine.clock, *screen_, *files_},
      component_(platform_, recordFolder) {
  // Only then a window tells that a serial device is silent; nobody has to close the boxes.
  till_.SupressError_ = false;
}

Register::~Register() = default;

bool Register::measured(const std::function<bool()>& call) {
  const double begin = machine_.clock.elapsed();
  bool isDone = false;
  try {
    isDone = call();
  } catch (const AutomationError&) {
    // An answer with fewer fields than it must have, or a file that could not be written.
    till_.Result = embedding::Till::kUntouched;
  }
  const double seconds = machine_.clock.elapsed() - begin;
  board_.count([&](Board::Facts& facts) { facts.callSeconds.add(seconds); });
  return isDone;
}

bool Register::connect() {
  constexpr std::int16_t kNotOpen = -6;
  constexpr std::int16_t kNoDevice = 100;
  if (isConnected_ && result() != kNotOpen && result() != kNoDevice) return true;
  isConnected_ = false;
  if (!call("Connect_", Text(port_))) return false;
  std::optional<Nature> before;
  for (int i = 0; i < kLooks && !isConnected_; ++i) {
    std::optional<Nature> now = readNature();
    if (!now && result() < 0) return false;
    isConnected_ = now && now == before;
    before = std::move(now);
  }
  if (!isConnected_) return false;
  serialNumber_ = before->serialNumber;
  board_.change([&](Board::Facts& facts) {
    facts.isConnected = true;
    facts.serialNumber = serialNumber_;
    facts.abilities = before->abilities;
  });
  board_.log("connected", {{"serialNumber", serialNumber_}});
  return true;
}

std::optional<Register::Nature> Register::readNature() {
  constexpr std::int16_t kMostTerminals = 5;
  Nature nature;
  Text number;
  if (!call("getSerialNumber", number) || !isCertain()) return std::nullopt;
  nature.serialNumber = toUtf8(number);
  double rates[5] = {};
  if (!call("getVatCategories", rates[0], rates[1], rates[2], rates[3], rates[4])) return std::nullopt;
  nature.abilities.vatRates.assign(std::begin(rates), std::end(rates));
  for (std::int16_t i = 1; i <= kMostTerminals; ++i) {
    const auto terminal = std::make_shared<clsEFT>();
    terminal->eftId = i;
    if (call("eftRead", *terminal) && terminal->eftEnabled != 0) nature.abilities.terminals.push_back(i);
    if (result() < 0) return std::nullopt;
  }
  return nature;
}

bool Register::ring(const Line& line) {
  using Kind = Line::Kind;
  if (line.kind == Kind::kComment) return call("commentPrinterPrint", line.description, line.size);
  return measured([&] {
    if (line.kind == Kind::kDiscount || line.kind == Kind::kMarkUp) {
      const Value object = till_.read("adjustment", !line.isOnSubtotal);
      const char* const member = line.kind == Kind::kDiscount ? "amountDiscount" : "amountMarkUp";
      return till_.callOn(*std::get<ObjectPtr>(object), member, line.description, euros(line.price));
    }
    const char* const member = line.kind == Kind::kSale   ? "ItemSale"
                               : line.kind == Kind::kVoid ? "ItemVoid"
                                                          : "ItemRefund";
    till_.Result = embedding::Till::kUntouched;
    till_.Exresult.clear();
    // The comment and the category stand behind the outcome.
    till_.read(member, line.description, static_cast<double>(line.quantity) / 1000, euros(line.price), line.vat,
               line.department, till_.Result, till_.Exresult, till_.SupressError_, line.comment, line.category);
    return till_.Result == 0;
  });
}

bool Register::pay(const Payment& payment, Cents amount, bool isLast) {
  constexpr std::size_t kText = 30;
  if (payment.terminal > 0) {
    return call("Payment", payment.number(), payment.description, euros(amount), payment.terminal, std::int16_t{0});
  }
  // Nothing has to be asked in between: what remains is known.
  Command command(u"5/");
  command.integer(payment.number()).text(payment.description, kText).empty().amount(euros(amount)).empty().empty();
  return send(command) && (!isLast || (isCertain() && send(u"O/1/")));
}

bool Register::isCertain() const { return result() == 0 && hasStatus(till_.Exresult); }

bool Register::isDocumentOpen() {
  const Value status = till_.read("StatusRead");
  return dynamic_cast<const clsStatus&>(*std::get<ObjectPtr>(status)).isTransactionOpen;
}

bool Register::isInTheWay() const {
  return result() < 0 || result() == embedding::Till::kUntouched ||
         std::ranges::find(kMended, result()) != std::end(kMended) || till_.Exresult.starts_with(kCondition);
}

std::optional<Picture> Register::look() {
  std::optional<Picture> before;
  for (int i = 0; i < kLooks; ++i) {
    std::optional<Picture> now = lookOnce();
    if (now && now == before) return now;
    // A register that does not answer is not asked on and on.
    if (!now && result() < 0) return std::nullopt;
    before = now;
  }
  return std::nullopt;
}

std::optional<Picture> Register::lookOnce(const std::function<bool()>& isEnough) {
  const auto day = std::make_shared<clsDailyAcc>();
  const auto receipt = std::make_shared<clsTransTotal>();
  if (!call("getDailyTotals", *day) || isEnough()) return std::nullopt;
  if (!call("transactionTotals", *receipt) || isEnough()) return std::nullopt;
  Picture picture{0, day->LegalReceiptCount, day->illLegalReceiptCount, receipt->receiptNumber};
  // The name of the day's journal is the serial number and the day.
  if (!send(u")/") || !isCertain()) return std::nullopt;
  const std::vector<Text> name = split(till_.Exresult, u'/');
  const Text serial = fromUtf8(serialNumber_);
  if (name.size() < 5 || !name[3].starts_with(serial)) return std::nullopt;
  picture.day = toInt(name[3].substr(serial.size()));
  if (picture.day <= 0) return std::nullopt;
  if (isEnough()) return std::nullopt;
  const bool isTold = send(u"5/99/1/1/1/");
  if (result() == 67 || result() == 68) picture.open = Picture::Open::kCashDocument;
  if (result() != 64 && picture.open == Picture::Open::kNothing) {
    const std::vector<Text> fields = split(till_.Exresult, u'/');
    const auto remaining = isTold && fields.size() >= 5 ? centsIn(fields[3]) : std::nullopt;
    if (!remaining) return std::nullopt;
    picture.open = Picture::Open::kReceipt;
    picture.total = centsOf(receipt->receiptTotalAmt);
    picture.remaining = *remaining;
  }
  board_.count([&](Board::Facts& facts) {
    facts.totals = http::Json{{"day", picture.day},
                              {"receipts", picture.receipts},
                              {"cashDocuments", picture.cashDocuments},
                              {"sales", day->VatSum},
                              {"byVat", http::Json::List{day->VatA, day->VatB, day->VatC, day->VatD, day->VatE}},
                              {"voids", day->amtVoid},
                              {"refunds", day->amtRefund},
                              {"cancelled", day->amtCancel},
                              {"cash", day->amtPaymentType1},
                              {"cards", day->amtPaymentType2},
                              {"cheques", day->amtPaymentType3},
                              {"discounts", day->amtDiscount},
                              {"markups", day->amtMarkUP}};
    facts.read = machine_.clock.sinceEpoch();
  });
  return picture;
}

std::optional<std::pair<int, Cents>> Register::openReceipt() {
  const auto receipt = std::make_shared<clsTransTotal>();
  if (!call("transactionTotals", *receipt) || !isCertain() || !isDocumentOpen()) return std::nullopt;
  return std::pair{static_cast<int>(receipt->receiptNumber), centsOf(receipt->receiptTotalAmt)};
}

void Register::waitAWhile() {
  waitFor(waitOf(result(), till_.Exresult));
  pass(1000);
}

void Register::pass(std::uint32_t milliseconds) { machine_.clock.sleep(milliseconds); }

void Register::waitFor(Wait wait) {
  if (board_.facts().wait == wait) return;
  board_.log("waiting", {{"on", wait.on}, {"code", wait.code}});
  board_.change([&](Board::Facts& facts) {
    ++facts.waits[wait.on];
    facts.wait = std::move(wait);
  });
}

void Register::goOn() {
  if (board_.facts().wait.on.empty()) return;
  board_.change([](Board::Facts& facts) { facts.wait = {}; });
}

}  // namespace mirvane::service
