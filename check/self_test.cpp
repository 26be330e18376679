#include "check/self_test.h"

#include <chrono>
#include <cmath>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>

#include "check/child.h"
#include "check/machine.h"
#include "check/texts.h"
#include "component/component.h"
#include "embedding/till.h"
#include "protocol/device_codes.h"
#include "support/electronic_journal.h"
#include "text/code_page.h"
#include "text/number_text.h"

namespace mirvane::check {
namespace {

namespace fs = std::filesystem;

constexpr double kStartSeconds = 20, kDaySeconds = 180;

// With this number its journals go into folders of their own.
constexpr const char* kSerialNumber = "MIRVANECHEK";
constexpr const char* kFirstDay = "0001";
constexpr const char* kItem = "Καφές ελληνικός";
constexpr const char* kItemOnPaper = "Καφες ελληνικος";

struct StepFailed : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A till that simulates the day.
class Till {
 public:
  /// Every call reports its outcome, which must be `expected`.
  template <class... A>
  void expect(std::int16_t expected, std::string_view member, A&&... arguments) {
    till_.call(member, arguments...);
    require(expected, member);
  }
  template <class... A>
  void succeed(std::string_view member, A&&... arguments) {
    expect(0, member, arguments...);
  }

  void sell(double quantity, double price) {
    succeed("ItemSale", fromUtf8(kItem), quantity, price, 24.0, std::int16_t{1});
  }
  void payBy(std::int16_t number, double amount) { pay(0, number, amount, 0); }
  void payByCard(std::int16_t expected, double amount) { pay(expected, 2, amount, 1); }
  void adjust(bool item, std::string_view how, const char16_t* sign, double amount) {
    const ObjectPtr adjustment = convertTo<ObjectPtr>(till_.read("adjustment", item));
    till_.callOn(*adjustment, how, TextView(sign), amount);
    require(0, how);
  }
  double sumOfDay() {
    const ObjectPtr day = createComponent("clsDailyAcc");
    succeed("getDailyTotals", *day);
    return convertTo<double>(day->call("VatSum"));
  }

 private:
  void pay(std::int16_t expected, std::int16_t number, double amount, std::int16_t terminal) {
    expect(expected, "Payment", number, Text(), amount, terminal, std::int16_t{0});
  }

  void require(std::int16_t expected, std::string_view member) const {
    if (till_.Result == expected) return;
    throw StepFailed(say(texts::kNotExpected, {std::string(member), std::to_string(till_.Result),
                                               toUtf8(till_.Exresult), std::to_string(expected)}));
  }

  embedding::Till till_{createComponent("fiscalTrevikModule")};
};

void createAll() {
  for (const PublicClass& each : publicClasses()) createComponent(std::string(each.describe().name()));
}

// The folders of this day's journal, recognised by what the component wrote.
std::vector<fs::path> journalFolders() {
  std::vector<fs::path> folders;
  for (const Text& pattern : FiscalJournal().folderPatterns()) {
    folders.push_back(pathOf(toUtf8(pattern.substr(0, pattern.find(u'$')))) / kSerialNumber);
  }
  return folders;
}

void removeJournals() {
  std::error_code ignored;
  for (const fs::path& folder : journalFolders()) {
    fs::remove_all(folder, ignored);
    fs::remove(folder.parent_path(), ignored);  // stays if it contains anything else
  }
}

void expectJournals() {
  for (const fs::path& folder : journalFolders()) {
    for (const char* end : {"_a.txt", "_b.txt", "_s.txt"}) {
      const fs::path file = folder / kFirstDay / (std::string(kSerialNumber) + kFirstDay + end);
      std::error_code error;
      if (fs::file_size(file, error) == 0 || error) throw StepFailed(say(texts::kNoJournalFile, {nameOf(file)}));
    }
  }
}

/// Runs the day's steps one by one. Reports each that fails, and ends the day if later ones need it.
class Day {
 public:
  bool step(const std::string& name, const std::function<void()>& run) {
    try {
      run();
      findings.ok(name);
      return true;
    } catch (const std::exception& error) {
      findings.fault(say(texts::kStepFails, {name, error.what()}), say(texts::kSendReport));
      return false;
    }
  }
  /// The same; the component must also show and close its window.
  bool stepWithWindow(const std::string& name, const Phrase& windowStep, const char* windowClass,
                      const std::function<void()>& run) {
    const auto watch = watchWindows(windowClass);
    const bool succeeded = step(name, run);
    if (watch == nullptr) return succeeded;
    return step(say(windowStep),
                [&watch] {
                  if (!watch->hasComeAndGone()) throw StepFailed(say(texts::kNoWindow));
                }) &&
           succeeded;
  }

  Findings findings;
};

void sellEachKind(Day& day, Till& till) {
  day.step(say(texts::kCashStep), [&till] {
    till.sell(2, 1.8);
    till.payBy(1, 5);
  });
  day.step(say(texts::kVoidStep), [&till] {
    till.sell(2, 1.8);
    till.succeed("ItemVoid", fromUtf8(kItem), 1.0, 1.8, 24.0, std::int16_t{1});
    till.succeed("ItemRefund", fromUtf8(kItem), 1.0, 0.8, 24.0, std::int16_t{1});
    till.payBy(3, 1);
  });
  day.step(say(texts::kAdjustStep), [&till] {
    till.sell(1, 10);
    till.adjust(true, "amountDiscount", u"-", 1);
    till.adjust(true, "amountMarkUp", u"+", 0.5);
    till.adjust(false, "percentDiscount", u"-", 10);
    till.adjust(false, "amountMarkUp", u"+", 0.45);
    till.payBy(1, 9);
  });
  day.step(say(texts::kMixedStep), [&till] {
    till.sell(1, 3);
    till.payBy(1, 1);
    till.payBy(4, 2);
  });
  day.step(say(texts::kCancelStep), [&till] {
    till.sell(1, 3);
    till.succeed("VoidReceipt");
  });
  day.stepWithWindow(say(texts::kCardStep), texts::kWaitWindowStep, "MirvaneWait", [&till] {
    till.sell(1, 4);
    till.payByCard(0, 4);
  });
  day.step(say(texts::kDeclinedStep), [&till] {
    constexpr std::int16_t kCardFailed = 156;
    till.sell(1, 4);
    till.payByCard(kCardFailed, 4);
    till.payBy(1, 4);
  });
}

constexpr double kSales = 3.6 + 1 + 9 + 3 + 4 + 4;

Findings dayAt(const std::string& address) {
  Day day;
  if (!day.step(say(texts::kClassesStep, {std::to_string(publicClasses().size())}), &createAll)) return day.findings;
  Till till;
  const Text port = fromUtf8(address);
  const bool connected = day.step(say(texts::kConnectStep), [&] {
    Text serialNumber;
    till.succeed("Connect_", port);
    till.succeed("getSerialNumber", serialNumber);
    if (toUtf8(serialNumber) != kSerialNumber) throw StepFailed(toUtf8(serialNumber));
  });
  if (!connected) return day.findings;
  sellEachKind(day, till);
  day.step(say(texts::kCashDrawerStep), [&till] {
    till.succeed("executeCashIn", 20.0, u"Κέρματα");
    till.succeed("executeCashOut", 5.5, u"Προμηθευτής");
    till.succeed("DrawerOpen");
    till.succeed("commentPrinterPrint", u"mirvane-check", std::int16_t{1});
  });
  // The emulator ignores four questions, after which the component gives up.
  day.step(say(texts::kPulledStep), [&till] {
    till.expect(link_result::kNoAnswer, "FeedPaper", std::int16_t{1});
    till.succeed("FeedPaper", std::int16_t{1});
  });
  day.step(say(texts::kTotalsStep), [&till] {
    const double sum = till.sumOfDay();
    if (std::abs(sum - kSales) > 0.001) throw StepFailed(toUtf8(numberText(sum)));
  });
  day.step(say(texts::kXStep), [&till] { till.succeed("issueXReport"); });
  removeJournals();
  day.stepWithWindow(say(texts::kZStep), texts::kJournalWindowStep, "MirvaneJournal", [&till] {
    till.succeed("issueZReport");
    expectJournals();
  });
  removeJournals();
  day.step(say(texts::kDisconnectStep), [&] { till.expect(1, "DisConnect_", port); });
  return day.findings;
}

// A temporary folder for this run.
class Workplace {
 public:
  Workplace() : path(fs::temp_directory_path() / ("mirvane-check-" + std::to_string(number()))) {
    fs::create_directories(path);
  }
  Workplace(const Workplace&) = delete;
  Workplace& operator=(const Workplace&) = delete;
  ~Workplace() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }

  const fs::path path;

 private:
  static long long number() { return std::chrono::steady_clock::now().time_since_epoch().count(); }
};

fs::path findEmulator(const std::string& given) {
  if (!given.empty()) return fs::absolute(pathOf(given));
  const std::string name = programName("mirvane-emulator");
  const fs::path here = ownProgram().parent_path();
  std::error_code error;
  for (const fs::path& candidate : {here / name, here / "emulator" / name, here.parent_path() / "emulator" / name}) {
    if (fs::exists(candidate, error)) return candidate;
  }
  return {};
}

// "127.0.0.1:40000" from the emulator's "ready" line.
std::string addressIn(const std::string& ready) {
  constexpr std::string_view kMark = "udp=";
  const std::size_t at = ready.find(kMark);
  if (at == std::string::npos) return {};
  const std::size_t begin = at + kMark.size();
  return ready.substr(begin, ready.find_first_of(" \r\n", begin) - begin);
}

void lookAtPaper(Findings& findings, const fs::path& paper) {
  std::ifstream stream(paper, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  for (const char* wanted : {kItemOnPaper, "ΑΛΛΑΓΗ", "Προμηθευτης", "ΔΕΛΤΙΟ Ζ 0001 - ΛΗΞΗ"}) {
    if (text.find(wanted) != std::string::npos) continue;
    return findings.fault(say(texts::kStepFails, {say(texts::kPaperStep), say(texts::kPaperLacks, {wanted})}),
                          say(texts::kSendReport));
  }
  findings.ok(say(texts::kPaperStep));
}

Findings dayOf(const Twin& twin, const fs::path& emulator) {
  Findings findings;
  const std::string bits = std::to_string(twin.bits);
  if (twin.program.empty()) {
    findings.warning(say(texts::kNoTwin, {bits}), say(texts::kPutTwin));
    return findings;
  }
  const Workplace work;
  const fs::path paper = work.path / "paper.txt";
  try {
    Child device(emulator, {"--udp", "127.0.0.1:0", "--quiet", "--serial-number", kSerialNumber, "--paper",
                            nameOf(paper), "--card", "0", "--card", "156", "--fault", "on F/ 4 silence"});
    const std::string address = addressIn(device.lineWithin(kStartSeconds).value_or(""));
    if (address.empty()) throw std::runtime_error("no line \"ready\"");
    Child till(twin.program, {"--language", speaksGreek() ? "el" : "en", "--day", address}, work.path);
    const auto told = till.outputWithin(kDaySeconds);
    findings = fromLines(told.value_or(""));
    if (findings.list().empty()) {
      findings.fault(say(texts::kTwinSilent, {bits, std::to_string(static_cast<int>(kDaySeconds))}),
                     say(texts::kRunDoctor));
    } else if (findings.count(Mark::kFault) == 0) {
      lookAtPaper(findings, paper);
    }
  } catch (const std::runtime_error& error) {
    findings.fault(say(texts::kEmulatorFails, {error.what()}), say(texts::kRunEmulator, {nameOf(emulator)}));
  }
  return findings;
}

}  // namespace

std::vector<std::pair<std::string, Findings>> testItself(const std::string& emulator) {
  const fs::path program = findEmulator(emulator);
  if (std::error_code error; program.empty() || !fs::exists(program, error)) {
    const std::string name = programName("mirvane-emulator");
    Findings findings;
    findings.fault(say(texts::kNoEmulator, {program.empty() ? name : nameOf(program)}),
                   say(texts::kPutEmulator, {name}));
    return {{say(texts::kSelfTest), findings}};
  }
  std::vector<std::pair<std::string, Findings>> all;
  for (const Twin& twin : twins()) {
    all.emplace_back(say(texts::kDayOfBits, {std::to_string(twin.bits)}), dayOf(twin, program));
  }
  return all;
}

Findings playDay(const std::string& address) {
  try {
    return dayAt(address);
  } catch (const std::exception& error) {
    Findings findings;
    findings.fault(error.what(), say(texts::kRunDoctor));
    return findings;
  }
}

Findings tryComponent(const fs::path& folder) {
  constexpr int kBits = 8 * static_cast<int>(sizeof(void*));
  Findings findings;
  try {
    constexpr const char* kFacade = "fiscalTrevikModule";
    const ObjectPtr facade = folder.empty() ? createComponent(kFacade) : createFromFolder(folder, kFacade);
    findings.ok(say(texts::kTried, {std::to_string(kBits)}));
  } catch (const std::exception& error) {
    findings.fault(error.what(), "");
  }
  return findings;
}

}  // namespace mirvane::check
