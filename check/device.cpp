#include "check/device.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <memory>

#include "check/child.h"
#include "check/doctor.h"
#include "check/machine.h"
#include "check/patience.h"
#include "check/texts.h"
#include "driver/words.h"
#include "link/port.h"
#include "session/session.h"
#include "state/module_state.h"
#include "text/code_page.h"
#include "tools/result_codes.h"

namespace mirvane::check {
namespace {

constexpr double kAnswerSeconds = 2;
constexpr double kPortSeconds = 10;

// An open port of this machine and the exchanges on it.
class Conversation {
 public:
  explicit Conversation(const std::string& port) : opened(openPort(fromUtf8(port))) {}
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;
  ~Conversation() { closePort(); }

  /// The reply; a link failure if none comes in time.
  Reply ask(const Text& command) {
    try {
      const Patience patience(kAnswerSeconds);
      return session_.exchange(command, OwnOutcome());
    } catch (const OutOfPatience&) {
      return {link_result::kNoAnswer, link_result::kNoAnswerText};
    }
  }

  const Reply opened;

 private:
  Session session_{kSecondGenerationWords};
};

// "192.168.1.50:9100", optionally with a local port.
bool isAddress(const std::string& port) {
  return port.find_first_not_of("0123456789.:") == std::string::npos && port.find(':') != std::string::npos &&
         std::count(port.begin(), port.end(), '.') == 3;
}

bool isPortOfThisMachine(const std::string& port) {
  std::string name = port;
  std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::toupper(c); });
  const std::vector<SerialPortName> ports = serialPorts();
  std::error_code error;
  return std::any_of(ports.begin(), ports.end(), [&](const auto& each) { return each.name == name; }) ||
         std::filesystem::is_character_file(port, error);
}

bool isSerialName(const std::string& port) {
  return isPortOfThisMachine(port) || port.find_first_of(".:") == std::string::npos;
}

// The finding about a text that looks like a network port but is not a numeric address and port.
Finding noAddress(const std::string& port) {
  const bool isBare = port.find(':') == std::string::npos && port.find_first_not_of("0123456789.") == std::string::npos;
  if (isBare) return {Mark::kFault, say(texts::kNoPortNumber, {port}), say(texts::kAddPortNumber, {port})};
  return {Mark::kFault, say(texts::kNotAnAddress, {port}), say(texts::kUseNumbers)};
}

Finding whyNotOpened(const std::string& port) {
  if (isAddress(port)) return {Mark::kFault, say(texts::kNoNetwork, {port}), say(texts::kCheckNetwork)};
  if (!isSerialName(port)) return noAddress(port);
  if (!isPortOfThisMachine(port)) {
    const std::string ports = listOfPorts();
    const std::string remedy = ports.empty() ? say(texts::kPlugIn) : say(texts::kUsePort, {ports});
    return {Mark::kFault, say(texts::kNoSuchPort, {port}), remedy};
  }
  platform::SerialPort& serial = platform::hostPlatform().serial;
  if (serial.close(serial.open(fromUtf8(port)).value_or(0))) {
    return {Mark::kFault, say(texts::kNotConfigured, {port}), say(texts::kOtherAdapter)};
  }
  if (const auto holder = holderOf(port)) {
    return {Mark::kFault, say(texts::kPortTakenBy, {port, *holder}), say(texts::kCloseHolder, {*holder})};
  }
  return {Mark::kFault, say(texts::kPortTaken, {port}), say(texts::kCloseOthers)};
}

Finding silenceAt(const std::string& port) {
  const std::string seconds = std::to_string(static_cast<int>(kAnswerSeconds));
  if (!isAddress(port)) return {Mark::kFault, say(texts::kSilent, {seconds}), say(texts::kSwitchOn)};
  const std::string behind = port.substr(port.find(':') + 1);
  return {Mark::kFault, say(texts::kSilentNetwork, {port, seconds}),
          say(texts::kSwitchOnNetwork, {behind.substr(0, behind.find(':'))})};
}

std::string fieldOf(const Reply& reply, std::size_t i) {
  return i < reply.countAll() ? toUtf8(reply.textAt(i)) : std::string();
}

// The register's text, followed by its meaning.
std::string explained(const std::string& words, const std::string& meaning) {
  return meaning.empty() ? words : say(texts::kExplained, {words, meaning});
}

std::string printerWords(const std::string& words) {
  for (const auto& [piece, meaning] : texts::kPrinterWords) {
    if (words.find(piece) != std::string::npos) return explained(words, say(meaning));
  }
  return words;
}

// The finding about a reply that is neither a success nor a register's.
Finding refusal(const std::string& question, const Reply& reply) {
  const std::string message = toUtf8(reply.message);
  const ResultCode* const code = findResultCode(reply.result, message);
  const auto inLanguage = [](const Bilingual& text) { return speaksGreek() ? text.el : text.en; };
  const bool isKnown = code != nullptr && code->knowledge == Knowledge::kMeaning;
  const std::string words = isKnown ? explained(message, inLanguage(code->meaning)) : message;
  if (reply.result < 0) return {Mark::kFault, say(texts::kBroken, {words}), say(texts::kSwitchOn)};
  std::string remedy = code == nullptr ? "" : inLanguage(code->cashier);
  if (remedy.empty()) remedy = say(texts::kMendCode);
  return {Mark::kFault, say(texts::kRefused, {question, std::to_string(reply.result), words}), remedy};
}

// The register at the open port; a fault if nothing answers, or something else does.
Finding whoAnswers(Conversation& conversation, const std::string& port) {
  const Reply reply = conversation.ask(u"v/");
  if (reply.result < 0) return silenceAt(port);
  if (!hasStatus(reply.raw())) {
    return {Mark::kFault, say(texts::kNoRegister, {toUtf8(reply.raw())}), say(texts::kOtherPort)};
  }
  if (!reply.succeeded()) return refusal("v/", reply);
  return {Mark::kOk, say(texts::kModel, {fieldOf(reply, 0), fieldOf(reply, 1)}), {}};
}

void tellState(Findings& findings, const Reply& reply) {
  // If the printer status byte reports a condition, the message is not the reply.
  const bool isReady = reply.message == reply.raw();
  if (!reply.succeeded()) {
    findings.add(refusal("?/", reply));
  } else if (isReady) {
    findings.ok(say(texts::kPaper));
  } else {
    findings.fault(say(texts::kPrinter, {printerWords(toUtf8(reply.message))}), say(texts::kMendPrinter));
  }
  if (reply.result < 0) return;
  findings.ok(say(reply.flags().dayOpen ? texts::kDayOpen : texts::kDayClosed));
  if (reply.flags().transactionOpen) findings.warning(say(texts::kReceiptOpen), say(texts::kFinishReceipt));
  if (reply.flags().flashNearFull) findings.warning(say(texts::kFlashNearFull), say(texts::kCloseDay));
}

void tellToday(Findings& findings, const Reply& reply) {
  constexpr std::size_t kSales = 5, kReceipts = 6;
  if (!reply.succeeded()) return findings.add(refusal("0/", reply));
  findings.ok(say(texts::kToday, {fieldOf(reply, kReceipts), fieldOf(reply, kSales)}));
}

// Adds nothing if the register refuses to report the receipt or its remaining amount.
void tellReceipt(Findings& findings, const Reply& totals, const Reply& remaining) {
  if (!totals.succeeded()) findings.add(refusal("9/", totals));
  const bool hasReceipt = !remaining.is(DeviceCode::kTransactionNotOpen) && !remaining.is(DeviceCode::kCashInOpen) &&
                          !remaining.is(DeviceCode::kCashOutOpen);
  if (hasReceipt && !remaining.succeeded()) findings.add(refusal("5/99/", remaining));
}

// The three numbers of a date or a time, with any separators; a year may have two digits.
std::array<int, 3> numbersIn(const std::string& text) {
  std::array<int, 3> numbers{-1, -1, -1};
  std::size_t at = 0;
  for (int& number : numbers) {
    at = text.find_first_of("0123456789", at);
    if (at == std::string::npos) break;
    const std::size_t end = std::min(text.find_first_not_of("0123456789", at), text.size());
    number = std::atoi(text.substr(at, std::min<std::size_t>(end - at, 4)).c_str());
    at = end;
  }
  return numbers;
}

// Seconds since some moment; days of a daylight-saving change count like any other day.
double secondsOf(int year, int month, int day, int hour, int minute, int second) {
  using namespace std::chrono;
  const sys_days date = std::chrono::year(year) / std::chrono::month(static_cast<unsigned>(month)) /
                        std::chrono::day(static_cast<unsigned>(day));
  return static_cast<double>(date.time_since_epoch().count()) * 86400.0 + hour * 3600.0 + minute * 60.0 + second;
}

void tellClock(Findings& findings, const Reply& reply) {
  constexpr double kTolerated = 120, kDay = 86400, kMinute = 60;
  if (!reply.succeeded()) return findings.add(refusal("t/", reply));
  const std::string dateText = fieldOf(reply, 0), timeText = fieldOf(reply, 1);
  auto [day, month, year] = numbersIn(dateText);
  const auto [hour, minute, second] = numbersIn(timeText);
  if (year >= 0 && year < 100) year += 2000;
  if (year < 0 || month < 1 || month > 12 || day < 1 || day > 31 || hour < 0 || minute < 0) {
    return findings.warning(say(texts::kClockUnread, {dateText + " " + timeText}), say(texts::kSetClock));
  }
  const platform::LocalTime here = platform::hostPlatform().clock.localTime();
  const double ahead = secondsOf(year, month, day, hour, minute, std::max(second, 0)) -
                       secondsOf(here.year, here.month, here.day, here.hour, here.minute, here.second);
  const auto rounded = [](double value) { return std::to_string(std::lround(value)); };
  if (std::abs(ahead) <= kTolerated) {
    return findings.ok(say(texts::kClock, {dateText, timeText, rounded(ahead)}));
  }
  const std::string difference = std::abs(ahead) >= 2 * kDay ? say(texts::kDays, {rounded(ahead / kDay)})
                                                             : say(texts::kMinutes, {rounded(ahead / kMinute)});
  findings.warning(say(texts::kClockDiffers, {dateText, timeText, difference}), say(texts::kSetClock));
}

void printSlip(Findings& findings, Conversation& conversation, const std::string& answered) {
  constexpr int kFeed = 6;
  const auto line = [](const std::string& text, int size) {
    return Text(Command(u"P/").text(fromUtf8(text), 48).integer(size));
  };
  for (const Text& command :
       {line(say(texts::kSlipTitle), 1), line("mirvane-check " + now(), 1), line(answered, 1),
        line(say(texts::kSlipNotFiscal), 1), Text(Command(u"F/").integer(kFeed)), Text(u"p/2/1/")}) {
    const Reply reply = conversation.ask(command);
    if (!reply.succeeded()) return findings.add(refusal(toUtf8(command), reply));
  }
  findings.ok(say(texts::kSlipPrinted));
}

}  // namespace

Findings askRegister(const std::string& port, bool slip) {
  Findings findings;
  Conversation conversation(port);
  if (!conversation.opened.succeeded()) {
    findings.add(whyNotOpened(port));
    return findings;
  }
  const Finding who = whoAnswers(conversation, port);
  findings.add(who);
  if (who.mark == Mark::kOk) {
    const Reply state = conversation.ask(u"?/");
    tellState(findings, state);
    const Reply number = conversation.ask(u"a/");
    if (number.succeeded()) {
      findings.ok(say(texts::kSerialNumber, {fieldOf(number, 0)}));
    } else {
      findings.add(refusal("a/", number));
    }
    tellClock(findings, conversation.ask(u"t/"));
    tellToday(findings, conversation.ask(u"0/"));
    tellReceipt(findings, conversation.ask(u"9/"), conversation.ask(u"5/99/1/1/1/"));
    // Within a receipt it would become part of that.
    if (slip && state.result >= 0 && !state.flags().transactionOpen) {
      printSlip(findings, conversation, fieldOf(number, 0));
    } else if (slip) {
      findings.note(say(texts::kNoSlip));
    }
  }
  findings.sortWorstFirst();
  return findings;
}

Findings askWho(const std::string& port) {
  Findings findings;
  Conversation conversation(port);
  if (conversation.opened.succeeded()) {
    findings.add(whoAnswers(conversation, port));
  } else {
    findings.add(whyNotOpened(port));
  }
  return findings;
}

Findings findRegister() {
  using Time = std::chrono::steady_clock;
  struct Asked {
    std::string port;
    std::unique_ptr<Child> child;
  };
  std::vector<Asked> all;
  for (const SerialPortName& port : serialPorts()) {
    all.push_back({port.name, std::make_unique<Child>(
                                  ownProgram(), std::vector<std::string>{"--language", speaksGreek() ? "el" : "en",
                                                                         "--who", port.name})});
  }
  const auto begin = Time::now();
  Findings findings;
  for (Asked& each : all) {
    const std::chrono::duration<double> passed = Time::now() - begin;
    const auto told = each.child->outputWithin(std::max(kPortSeconds - passed.count(), 0.1));
    each.child.reset();
    const Findings answer = fromLines(told.value_or(""));
    if (answer.list().empty()) {
      findings.note(say(texts::kNotInTime, {each.port, std::to_string(static_cast<int>(kPortSeconds))}));
    } else {
      // If several ports are tried, it is not a fault that nothing answers on one of them.
      const Finding& finding = answer.list().front();
      findings.add(
          {finding.mark == Mark::kOk ? Mark::kOk : Mark::kNote, say(texts::kFound, {each.port, finding.what}), {}});
    }
  }
  if (findings.count(Mark::kOk) == 0) {
    findings.fault(say(texts::kNothingFound), say(all.empty() ? texts::kPlugIn : texts::kSwitchOnAny));
  }
  findings.sortWorstFirst();
  return findings;
}

}  // namespace mirvane::check
