#include "emulator/program/api.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

#include "emulator/decoder.h"
#include "emulator/program/assets.h"
#include "emulator/program/picture.h"
#include "emulator/program/views.h"
#include "protocol/device_codes.h"

namespace mirvane::emulator {
namespace {

/// A request that cannot be followed, for whoever made it.
struct Refusal {
  int status;
  std::string text;
  /// In the body, as a JSON pointer; the query's name; or empty.
  std::string where;
};

Answer json(const Json& value, int status = 200) { return {status, "application/json", value.dump(2) + "\n", 0}; }

Answer nothing() { return {204, "", "", 0}; }

/// A number in the path or the query.
int parseNumber(const std::string& text, const std::string& where, int least, int most) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < least || number > most) {
    throw Refusal{400, "a number from " + std::to_string(least) + " to " + std::to_string(most) + " is expected",
                  where};
  }
  return number;
}

/// The members of a body, each asked for by its name, so that none is overlooked and none is of a wrong kind.
class Wishes {
 public:
  Wishes(const std::string& body, std::initializer_list<const char*> names) {
    try {
      json_ = Json::parse(body.empty() ? "{}" : body);
    } catch (const Json::parse_error& error) {
      const std::string text = error.what();
      throw Refusal{400, "the body is no JSON: " + text.substr(std::min(text.find("] ") + 2, text.size())),
                    "byte " + std::to_string(error.byte)};
    }
    if (!json_.is_object()) throw Refusal{400, "the body must be an object", "/"};
    for (const auto& [name, value] : json_.items()) {
      if (std::find(names.begin(), names.end(), name) == names.end()) throw Refusal{400, "unknown", "/" + name};
    }
  }

  bool has(const char* name) const { return json_.contains(name); }
  bool flag(const char* name) const {
    if (!json_[name].is_boolean()) throw Refusal{400, "true or false is expected", pointer(name)};
    return json_[name].get<bool>();
  }
  std::string text(const char* name, std::size_t longest) const {
    if (!has(name) || !json_[name].is_string() || json_[name].get_ref<const std::string&>().size() > longest) {
      throw Refusal{400, "a text of at most " + std::to_string(longest) + " bytes is expected", pointer(name)};
    }
    return json_[name];
  }
  double number(const char* name, double least, double most) const {
    return has(name) ? numberIn(json_[name], pointer(name), least, most) : numberIn({}, pointer(name), least, most);
  }
  int whole(const char* name, int least, int most) const { return static_cast<int>(number(name, least, most)); }
  /// Each member of a list of `least` to `most`, with its place.
  void each(const char* name, std::size_t least, std::size_t most,
            const std::function<void(const Json&, const std::string&)>& take) const {
    if (!json_[name].is_array() || json_[name].size() < least || json_[name].size() > most) {
      throw Refusal{400, "a list of " + std::to_string(least) + " to " + std::to_string(most) + " is expected",
                    pointer(name)};
    }
    for (std::size_t i = 0; i < json_[name].size(); ++i) take(json_[name][i], pointer(name) + "/" + std::to_string(i));
  }

  static double numberIn(const Json& value, const std::string& where, double least, double most) {
    if (!value.is_number() || value.get<double>() < least || value.get<double>() > most) {
      throw Refusal{400, "a number from " + Json(least).dump() + " to " + Json(most).dump() + " is expected", where};
    }
    return value;
  }

 private:
  static std::string pointer(const char* name) { return "/" + std::string(name); }

  Json json_;
};

Code outcomeOf(double number, const std::string& where) {
  for (const Code code : {Code::kOk, Code::kNoChange, Code::kCardFailed, Code::kCardNotRead, Code::kTerminalInactive}) {
    if (number == static_cast<int>(code)) return code;
  }
  throw Refusal{400, "0, 112, 156, 157 or 159 is expected", where};
}

/// One request on its way to its handler.
struct Call {
  Station& station;
  const Request& request;
  /// What stands in the place of the path's "*".
  std::string item;

  int query(const char* name, int otherwise, int least, int most) const {
    const auto found = request.query.find(name);
    return found == request.query.end() ? otherwise : parseNumber(found->second, name, least, most);
  }
};

/// Carries out a command of the register; one that the register refuses is a conflict.
void require(Call& call, const std::string& command) {
  const DecodedReply reply = decodeReply(call.station.execute(command), command);
  if (reply.code != 0) {
    throw Refusal{
        409, "the register refuses with " + std::to_string(reply.code) + ": " + toUtf8(deviceErrorText(reply.code)),
        ""};
  }
}

// ---- Reading

Answer getState(Call& call) {
  Json view = registerView(call.station);
  view.update(faultsView(call.station));
  return json(view);
}

Json printedView(Station& station, const Document& document, std::size_t firstLine) {
  Json view = documentView(station, document);
  for (const char* name : {"lines", "adjustments", "taxes", "tenders"}) view.erase(name);
  view["firstLine"] = firstLine;
  view["paper"] = paperView(document, firstLine);
  return view;
}

/// What the page lacks, which knows the documents up to one of which it has some lines, and the conversation up to an
/// entry.
Answer getChanges(Call& call) {
  constexpr int kMost = 1'000'000'000;
  const int known = call.query("document", 0, 0, kMost);
  const int knownLines = call.query("lines", 0, 0, kMost);
  const int knownEntry = call.query("entry", 0, 0, kMost);
  const int limit = call.query("limit", 20, 1, 100);
  Json documents = Json::array(), entries = Json::array();
  const auto& all = call.station.device.roll().documents();
  const int newest = all.empty() ? 0 : all.back().id;
  for (const Document& document : all) {
    if (document.id < known || document.id <= newest - limit) continue;
    const auto lines = document.id == known ? static_cast<std::size_t>(knownLines) : 0;
    documents.push_back(printedView(call.station, document, std::min(lines, document.lines.size())));
  }
  const auto& conversation = call.station.conversation();
  const int newestEntry = conversation.empty() ? 0 : conversation.back().id;
  for (const Station::Entry& entry : conversation) {
    if (entry.id > knownEntry && entry.id > newestEntry - 200) entries.push_back(entryView(entry));
  }
  return json({{"started", call.station.started},
               {"register", registerView(call.station)},
               {"faults", faultsView(call.station)},
               {"firstDocument", call.station.device.roll().firstId()},
               {"documents", documents},
               {"firstEntry", call.station.firstEntry()},
               {"conversation", entries}});
}

Answer getConversation(Call& call) {
  const int after = call.query("after", 0, 0, 1'000'000'000);
  Json entries = Json::array();
  for (const Station::Entry& entry : call.station.conversation()) {
    if (entry.id > after) entries.push_back(entryView(entry));
  }
  return json(entries);
}

Answer deleteConversation(Call& call) {
  call.station.clearConversation();
  call.station.changed();
  return nothing();
}

/// The document in the form that the path's ending asks for.
Answer show(Call& call, const Document& document, const std::string& ending) {
  if (ending == ".png") return {200, "image/png", pictureOf(document), 0};
  if (ending == ".txt") {
    std::string text;
    for (const PaperLine& line : document.lines) text += toUtf8(line.text) + "\n";
    return {200, "text/plain", text, 0};
  }
  if (!ending.empty()) throw Refusal{404, "there are .txt and .png", ""};
  Json view = documentView(call.station, document);
  Json text = Json::array();
  for (const PaperLine& line : document.lines) text.push_back(toUtf8(line.text));
  view["text"] = text;
  return json(view);
}

/// Takes the ending off the path's item: "12.png" is "12", ".png".
std::string takeEnding(std::string& item) {
  std::string ending = item.substr(std::min(item.find('.'), item.size()));
  item.resize(item.size() - ending.size());
  return ending;
}

Answer getDocuments(Call& call) {
  const int before = call.query("before", 1'000'000'000, 1, 1'000'000'000);
  const int limit = call.query("limit", 20, 1, 100);
  Json views = Json::array();
  const auto& all = call.station.device.roll().documents();
  for (const Document& document : all) {
    if (document.id < before && document.id >= std::min(before, all.back().id + 1) - limit) {
      views.push_back(printedView(call.station, document, 0));
    }
  }
  return json(views);
}

Answer getDocument(Call& call) {
  const std::string ending = takeEnding(call.item);
  const int id = parseNumber(call.item, "path", 1, 1'000'000'000);
  for (const Document& document : call.station.device.roll().documents()) {
    if (document.id == id) return show(call, document, ending);
  }
  throw Refusal{404, "no such document", ""};
}

Answer getReceipts(Call& call) {
  Json views = Json::array();
  for (const Document& document : call.station.device.roll().documents()) {
    if (document.kind == Document::Kind::kReceipt) views.push_back(documentView(call.station, document));
  }
  return json(views);
}

Answer getReceipt(Call& call) {
  const std::string ending = takeEnding(call.item);
  const bool isLast = call.item == "last";
  const int number = isLast ? 0 : parseNumber(call.item, "path", 1, 1'000'000'000);
  const int closure = call.query("z", call.station.device.fiscal().closures + 1, 1, 1'000'000'000);
  const int wait = call.query("wait", 0, 0, 600);
  const auto& all = call.station.device.roll().documents();
  const auto found = std::find_if(all.rbegin(), all.rend(), [&](const Document& document) {
    if (document.kind != Document::Kind::kReceipt) return false;
    if (isLast) return document.state != Document::State::kOpen;
    return document.number == number && document.closure == closure;
  });
  const bool isOpen = found != all.rend() && found->state == Document::State::kOpen;
  if (found != all.rend() && !(isOpen && wait > 0)) return show(call, *found, ending);
  Answer missing = problem(wait > 0 ? 408 : 404, isOpen ? "the receipt is still open" : "no such receipt");
  missing.waitSeconds = wait;
  return missing;
}

// ---- Faults

Answer getFaults(Call& call) { return json(faultsView(call.station)); }

Answer postFault(Call& call) {
  const Wishes wishes(call.request.body, {"rule"});
  try {
    const std::string rule = wishes.text("rule", 2000);
    const int number = call.station.faults.add(rule);
    call.station.changed();
    return json({{"number", number}, {"rule", rule}}, 201);
  } catch (const FaultError& error) {
    throw Refusal{400, error.what(), "/rule"};
  }
}

Answer deleteFaults(Call& call) {
  call.station.calm();
  call.station.changed();
  return nothing();
}

Answer deleteFault(Call& call) {
  if (!call.station.faults.remove(parseNumber(call.item, "path", 1, 1'000'000'000))) {
    throw Refusal{404, "no such rule", ""};
  }
  call.station.changed();
  return nothing();
}

Answer patchSwitches(Call& call) {
  const Wishes wishes(call.request.body, {"paperEnd", "offline", "silent", "error", "nearFull", "busy", "off"});
  Faults::Switches switches = call.station.faults.switches;
  for (const auto& [name, bit] : kPrinterSwitches) {
    if (!wishes.has(name)) continue;
    switches.printer = static_cast<std::uint8_t>(wishes.flag(name) ? switches.printer | bit : switches.printer & ~bit);
  }
  if (wishes.has("busy")) switches.isBusy = wishes.flag("busy");
  if (wishes.has("off")) switches.isOff = wishes.flag("off");
  call.station.faults.switches = switches;
  call.station.changed();
  return getFaults(call);
}

// ---- The card terminal

Answer patchCard(Call& call) {
  const Wishes wishes(call.request.body, {"outcome", "next", "seconds", "answers"});
  CardPayments::Options options = call.station.device.cards().options;
  if (wishes.has("outcome")) options.otherwise = outcomeOf(wishes.number("outcome", 0, 255), "/outcome");
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
  return json(registerView(call.station)["card"]);
}

Answer postDecision(Call& call) {
  const Wishes wishes(call.request.body, {"outcome"});
  const Code outcome = outcomeOf(wishes.number("outcome", 0, 255), "/outcome");
  if (!call.station.device.cards().isUnderWay()) throw Refusal{409, "no card payment is under way", ""};
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
  if (wishes.has("feed")) require(call, "F/" + std::to_string(wishes.whole("feed", 1, 99)) + "/");
  if (wishes.has("cut")) {
    const std::string how = wishes.text("cut", 10);
    if (how != "full" && how != "partial") throw Refusal{400, "full or partial is expected", "/cut"};
    require(call, how == "full" ? "p/2/1/" : "p/2/0/");
  }
  return nothing();
}

std::string headerCommand(const Wishes& wishes) {
  std::string command = "H/";
  std::size_t lines = 0;
  wishes.each("header", 1, 5, [&](const Json& line, const std::string& where) {
    if (!line.is_object() || !line.contains("text") || !line["text"].is_string()) {
      throw Refusal{400, "an object with text and size is expected", where};
    }
    const double size = line.contains("size") ? Wishes::numberIn(line["size"], where + "/size", 1, 4) : 1;
    std::string text = toCodePage(fromUtf8(line["text"].get<std::string>()));
    std::replace(text.begin(), text.end(), '/', '-');
    command += std::to_string(static_cast<int>(size)) + "/" + text + "/";
    ++lines;
  });
  for (; lines < 5; ++lines) command += "1//";
  return command;
}

Answer patchRegister(Call& call) {
  const Wishes wishes(call.request.body, {"serialNumber", "vatNumber", "header", "vatRates", "clockOffset"});
  std::vector<std::string> commands;
  std::string serialNumber = call.station.device.fiscal().serialNumber;
  if (wishes.has("serialNumber")) {
    serialNumber = wishes.text("serialNumber", 20);
    if (!isSerialNumber(serialNumber)) throw Refusal{400, "letters and digits are expected", "/serialNumber"};
  }
  if (wishes.has("header")) commands.push_back(headerCommand(wishes));
  if (wishes.has("vatNumber")) commands.push_back("B/////////" + wishes.text("vatNumber", 20) + "//////////");
  if (wishes.has("vatRates")) {
    std::string command = "b/";
    wishes.each("vatRates", kVatCategories, kVatCategories, [&command](const Json& rate, const std::string& where) {
      command += formatFixed(std::llround(Wishes::numberIn(rate, where, 0, 99.99) * 100), 2) + "/";
    });
    commands.push_back(command);
  }
  const auto offset =
      wishes.has("clockOffset") ? std::llround(wishes.number("clockOffset", -4e9, 4e9)) : call.station.clockOffset;
  for (const std::string& command : commands) require(call, command);
  call.station.device.fiscal().serialNumber = serialNumber;
  call.station.clockOffset = offset;
  call.station.changed();
  return json(registerView(call.station));
}

Answer postReset(Call& call) {
  const Wishes wishes(call.request.body, {"preset"});
  const std::string name = wishes.has("preset") ? wishes.text("preset", 20) : "fresh";
  if (!call.station.reset(name)) throw Refusal{400, "fresh, kiosk or restaurant is expected", "/preset"};
  call.station.changed();
  return getState(call);
}

struct Route {
  const char* method;
  const char* path;
  Answer (*handle)(Call& call);
};

constexpr Route kRoutes[] = {
    {"GET", "/api/v1/state", getState},
    {"GET", "/api/v1/changes", getChanges},
    {"GET", "/api/v1/conversation", getConversation},
    {"DELETE", "/api/v1/conversation", deleteConversation},
    {"GET", "/api/v1/receipts", getReceipts},
    {"GET", "/api/v1/receipts/*", getReceipt},
    {"GET", "/api/v1/documents", getDocuments},
    {"GET", "/api/v1/documents/*", getDocument},
    {"GET", "/api/v1/faults", getFaults},
    {"POST", "/api/v1/faults", postFault},
    {"DELETE", "/api/v1/faults", deleteFaults},
    {"DELETE", "/api/v1/faults/*", deleteFault},
    {"PATCH", "/api/v1/switches", patchSwitches},
    {"PATCH", "/api/v1/card", patchCard},
    {"POST", "/api/v1/card/decision", postDecision},
    {"POST", "/api/v1/commands", postCommand},
    {"POST", "/api/v1/paper", postPaper},
    {"PATCH", "/api/v1/register", patchRegister},
    {"POST", "/api/v1/reset", postReset},
};

/// Whether `path` is the route's, whose last piece may be "*"; `item` becomes what stands there.
bool matches(std::string_view route, const std::string& path, std::string& item) {
  if (!route.ends_with('*')) return route == path;
  route.remove_suffix(1);
  if (!path.starts_with(route)) return false;
  item = path.substr(route.size());
  return !item.empty() && item.find('/') == std::string::npos;
}

}  // namespace

Answer problem(int status, const std::string& text, const std::string& where) {
  Json view{{"error", text}};
  if (!where.empty()) view["where"] = where;
  return json(view, status);
}

Answer answer(Station& station, const Request& request) {
  if (const Asset* asset = findAsset(request.path)) {
    if (request.method != "GET") return problem(405, "only GET");
    return {200, std::string(asset->type), std::string(asset->bytes), 0};
  }
  bool isKnown = false;
  for (const Route& route : kRoutes) {
    Call call{station, request, {}};
    if (!matches(route.path, request.path, call.item)) continue;
    isKnown = true;
    if (request.method != route.method) continue;
    try {
      return route.handle(call);
    } catch (const Refusal& refusal) {
      return problem(refusal.status, refusal.text, refusal.where);
    }
  }
  return isKnown ? problem(405, "not with " + request.method) : problem(404, "no such path");
}

}  // namespace mirvane::emulator
