#include <algorithm>
#include <cmath>

#include "emulator/decoder.h"
#include "emulator/program/web/call.h"
#include "emulator/program/web/wishes.h"
#include "http/message.h"
#include "protocol/device_codes.h"
#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

using http::json;

Code outcomeOf(double number, const std::string& where) {
  for (const Code code : {Code::kOk, Code::kNoChange, Code::kCardFailed, Code::kCardNotRead, Code::kTerminalInactive}) {
    if (number == static_cast<int>(code)) return code;
  }
  throw Refusal(400, "0, 112, 156, 157 or 159 is expected", where);
}

/// Carries out a command of the register; one that the register refuses is a conflict.
void require(Call& call, const std::string& command) {
  const int code = decodeReply(call.station.execute(command), command).code;
  if (code == 0) return;
  const std::string text = toUtf8(deviceErrorText(code));
  throw Refusal(409, "the register refuses: " + text, "", Json{{"code", code}, {"text", text}});
}

std::string headerCommand(const Wishes& wishes) {
  std::string command = "H/";
  std::size_t lines = 0;
  wishes.each("header", 1, 5, [&](const Json& line, const std::string& where) {
    const Json* text = line.find("text");
    if (!text || !text->as<std::string>()) throw Refusal(400, "an object with text and size is expected", where);
    const Json* size = line.find("size");
    std::string bytes = toCodePage(fromUtf8(*text->as<std::string>()));
    std::replace(bytes.begin(), bytes.end(), '/', '-');
    command += std::to_string(size ? Wishes::wholeIn(*size, where + "/size", 1, 4) : 1) + "/" + bytes + "/";
    ++lines;
  });
  for (; lines < 5; ++lines) command += "1//";
  return command;
}

std::string vatRatesCommand(const Wishes& wishes) {
  std::string command = "b/";
  wishes.each("vatRates", kVatCategories, kVatCategories, [&command](const Json& rate, const std::string& where) {
    command += formatFixed(std::llround(Wishes::numberIn(rate, where, 0, 99.99) * 100), 2) + "/";
  });
  return command;
}

}  // namespace

Answer deleteConversation(Call& call) {
  call.station.clearConversation();
  call.station.changed();
  return nothing();
}

// ---- Faults

Answer postFault(Call& call) {
  const Wishes wishes(call.request.body, {"rule"});
  try {
    call.station.faults.add(wishes.text("rule", 2000));
  } catch (const FaultError& error) {
    throw Refusal(400, error.what(), "body/rule");
  }
  call.station.changed();
  return json(ruleView(call.station.faults.rules().back()), 201);
}

Answer deleteFaults(Call& call) {
  call.station.calm();
  call.station.changed();
  return nothing();
}

Answer deleteFault(Call& call) {
  if (!call.station.faults.remove(call.number())) throw Refusal(404, "no such rule", "path");
  call.station.changed();
  return nothing();
}

Answer patchSwitches(Call& call) {
  const Wishes wishes(call.request.body,
                      {"paperEnd", "offline", "silent", "error", "nearFull", "busy", "off", "clockLost", "batteryFault",
                       "memoryFull", "cutterError", "dailyZ", "drawerLimit"});
  Faults::Switches switches = call.station.faults.switches;
  for (const auto& [name, bit] : kPrinterSwitches) {
    if (!wishes.has(name)) continue;
    switches.printer = static_cast<std::uint8_t>(wishes.flag(name) ? switches.printer | bit : switches.printer & ~bit);
  }
  if (wishes.has("busy")) switches.isBusy = wishes.flag("busy");
  if (wishes.has("off")) switches.isOff = wishes.flag("off");
  Conditions conditions = call.station.device.conditions();
  for (const auto& [name, member] : kConditions) {
    if (wishes.has(name)) conditions.*member = wishes.flag(name);
  }
  call.station.faults.switches = switches;
  call.station.device.conditions() = conditions;
  call.station.changed();
  return getFaults(call);
}

// ---- The card terminal

Answer patchCard(Call& call) {
  const Wishes wishes(call.request.body, {"outcome", "next", "seconds", "answers"});
  CardPayments::Options options = call.station.device.cards().options;
  if (wishes.has("outcome")) options.otherwise = outcomeOf(wishes.number("outcome", 0, 255), "body/outcome");
  if (wishes.has("seconds")) options.seconds = wishes.number("seconds", 0, 3600);
  if (wishes.has("answers")) options.answers = wishes.flag("answers");
  if (wishes.has("next")) {
    options.next.clear();
    wishes.each("next", 0, 100, [&options](const Json& value, const std::string& where) {
      options.next.push_back(outcomeOf(Wishes::numberIn(value, where, 0, 255), where));
    });
  }
  call.station.device.cards().options = options;
  call.station.changed();
  return getCard(call);
}

Answer postDecision(Call& call) {
  const Wishes wishes(call.request.body, {"outcome"});
  const Code outcome = outcomeOf(wishes.number("outcome", 0, 255), "body/outcome");
  if (!call.station.device.cards().isUnderWay()) throw Refusal(409, "no card payment is in progress");
  call.station.device.cards().decide(outcome);
  call.station.device.settleCard();
  call.station.changed();
  return nothing();
}

// ---- The register

Answer postCommand(Call& call) {
  const Wishes wishes(call.request.body, {"command"});
  const std::string command = toCodePage(fromUtf8(wishes.text("command", Line::kLongestCommand)));
  return json(replyView({command, call.station.execute(command), {}}));
}

Answer postPaper(Call& call) {
  const Wishes wishes(call.request.body, {"feed", "cut"});
  const std::string feed = wishes.has("feed") ? "F/" + std::to_string(wishes.whole("feed", 1, 99)) + "/" : "";
  const bool isFull = !wishes.has("cut") || wishes.word("cut", {"full", "partial"}) == "full";
  if (!feed.empty()) require(call, feed);
  if (wishes.has("cut")) require(call, isFull ? "p/2/1/" : "p/2/0/");
  return nothing();
}

Answer patchRegister(Call& call) {
  const Wishes wishes(call.request.body, {"serialNumber", "vatNumber", "header", "vatRates", "clockOffset"});
  Station& station = call.station;
  std::vector<std::string> commands;
  std::string serialNumber = station.device.fiscal().serialNumber;
  if (wishes.has("serialNumber")) {
    serialNumber = wishes.text("serialNumber", 20);
    if (!isSerialNumber(serialNumber)) throw Refusal(400, "letters and digits are expected", "body/serialNumber");
  }
  if (wishes.has("header")) commands.push_back(headerCommand(wishes));
  if (wishes.has("vatNumber")) {
    commands.push_back("B/////////" + toCodePage(fromUtf8(wishes.text("vatNumber", 20))) + "//////////");
  }
  if (wishes.has("vatRates")) commands.push_back(vatRatesCommand(wishes));
  std::optional<std::int64_t> offset;
  if (wishes.has("clockOffset")) offset = std::llround(wishes.number("clockOffset", -4e9, 4e9));
  const FiscalState before = station.device.fiscal();
  try {
    for (const std::string& command : commands) require(call, command);
  } catch (const Refusal&) {
    station.device.fiscal() = before;
    station.changed();
    throw;
  }
  station.device.fiscal().serialNumber = serialNumber;
  if (offset) station.clock.offset = *offset;
  station.changed();
  return getRegister(call);
}

Answer patchClock(Call& call) {
  const Wishes wishes(call.request.body, {"time", "offset", "runs"});
  StationClock clock = call.station.clock;
  if (wishes.has("time") && wishes.has("offset")) throw Refusal(400, "cannot be combined with time", "body/offset");
  if (wishes.has("offset")) clock.setOffset(std::llround(wishes.number("offset", -4e9, 4e9)));
  if (wishes.has("time") && !clock.set(wishes.text("time", 30))) {
    throw Refusal(400, "a time such as 2026-11-22T09:30:00 is expected", "body/time");
  }
  if (wishes.has("runs")) clock.run(wishes.flag("runs"));
  call.station.clock = clock;
  call.station.changed();
  return getClock(call);
}

Answer postReset(Call& call) {
  const Wishes wishes(call.request.body, {"preset"});
  const std::string name = wishes.has("preset") ? wishes.word("preset", {"fresh", "kiosk", "restaurant"}) : "fresh";
  call.station.reset(name);
  call.station.changed();
  return getState(call);
}

}  // namespace mirvane::emulator
