#include <algorithm>

#include "emulator/program/web/call.h"
#include "emulator/program/web/picture.h"
#include "emulator/program/web/wishes.h"
#include "http/message.h"
#include "text/code_page.h"
#include "version.h"

namespace mirvane::emulator {
namespace {

using http::json;

/// Takes the ending off the path's item: "12.png" is "12", ".png".
std::string takeEnding(std::string& item) {
  std::string ending = item.substr(std::min(item.find('.'), item.size()));
  item.resize(item.size() - ending.size());
  return ending;
}

/// The document in the form that the path's ending asks for.
Answer show(Call& call, const Document& document, const std::string& ending) {
  if (ending == ".png") return {200, "image/png", pictureOf(document)};
  if (ending == ".txt") {
    std::string text;
    for (const PaperLine& line : document.lines) text += toUtf8(line.text) + "\n";
    return {200, "text/plain", text};
  }
  if (!ending.empty()) throw Refusal(404, "only .txt and .png exist", "path");
  Json::List text;
  for (const PaperLine& line : document.lines) text.emplace_back(toUtf8(line.text));
  return json(documentView(call.station, document).set("text", text));
}

/// What is not there: yet, when the client waits for it.
Answer missing(const Call& call, const std::string& text) {
  if (call.wait() == 0) throw Refusal(404, text, "path");
  Answer none = nothing();
  none.waitSeconds = call.wait();
  return none;
}

Json printedView(Station& station, const Document& document, std::size_t firstLine) {
  Json view = documentView(station, document);
  for (const char* name : {"lines", "adjustments", "taxes", "tenders"}) view.erase(name);
  return view.set("firstLine", firstLine).set("paper", paperView(document, firstLine));
}

/// Of Latin and Greek letters, without accent.
char16_t capital(char16_t c) {
  constexpr TextView kFrom = u"άέήίόύώϊϋΐΰςΆΈΉΊΌΎΏΪΫ", kTo = u"ΑΕΗΙΟΥΩΙΥΙΥΣΑΕΗΙΟΥΩΙΥ";
  const std::size_t at = kFrom.find(c);
  if (at != TextView::npos) return kTo[at];
  const bool isSmall = (c >= u'a' && c <= u'z') || (c >= u'α' && c <= u'ω');
  return static_cast<char16_t>(isSmall ? c - 32 : c);
}

/// The lines that hold `text`, in small or capital letters.
std::ptrdiff_t countPrinted(const Document& document, const Text& text) {
  return std::count_if(document.lines.begin(), document.lines.end(), [&text](const PaperLine& line) {
    const auto isSame = [](char16_t a, char16_t b) { return capital(a) == capital(b); };
    return std::search(line.text.begin(), line.text.end(), text.begin(), text.end(), isSame) != line.text.end();
  });
}

/// A page of the documents that `wants` chooses, oldest first: those behind `after`, or else the latest before
/// `before`.
template <class Wants, class View>
Answer page(Call& call, const Wants& wants, const View& view) {
  const int after = call.query("after", 0, 0, kGreatestNumber);
  const int before = call.query("before", kGreatestNumber, 1, kGreatestNumber);
  const auto limit = static_cast<std::size_t>(call.query("limit", 20, 1, 100));
  const bool isFromFront = call.request.query.contains("after");
  const auto wanted = call.request.query.find("text");
  const Text text = wanted == call.request.query.end() ? Text() : fromUtf8(wanted->second);
  std::deque<const Document*> chosen;
  for (const Document& document : call.station.device.roll().documents()) {
    if (document.id <= after || document.id >= before || !wants(document)) continue;
    if (!text.empty() && countPrinted(document, text) == 0) continue;
    chosen.push_back(&document);
    if (chosen.size() <= limit) continue;
    isFromFront ? chosen.pop_back() : chosen.pop_front();
  }
  Json::List views;
  for (const Document* document : chosen) views.push_back(view(*document));
  return json(views);
}

/// Whether `value` holds all that `wanted` names, with equal values.
bool holds(const Json& value, const Json& wanted) {
  const auto* members = wanted.as<Json::Object>();
  if (!members) return value == wanted;
  return std::all_of(members->begin(), members->end(), [&value](const Json::Member& member) {
    const Json* own = value.find(member.name);
    return own && holds(*own, member.value);
  });
}

/// In the `list` of each closed receipt.
int countIn(Station& station, const char* list, const Json& wanted) {
  std::ptrdiff_t count = 0;
  for (const Document& document : station.device.roll().documents()) {
    if (document.kind != Document::Kind::kReceipt || document.state != Document::State::kClosed) continue;
    const Json view = documentView(station, document);
    const auto& elements = *view.find(list)->as<Json::List>();
    count +=
        std::count_if(elements.begin(), elements.end(), [&](const Json& element) { return holds(element, wanted); });
  }
  return static_cast<int>(count);
}

}  // namespace

Answer getHealth(Call& call) {
  Json::List lines;
  for (const NamedLine& line : call.station.lines()) lines.emplace_back(line.name);
  return json(Json{{"status", "ok"}, {"lines", lines}});
}

Answer getVersion(Call& /*call*/) { return json(Json{{"version", MIRVANE_VERSION}, {"interface", 1}}); }

Answer getState(Call& call) { return json(registerView(call.station).update(faultsView(call.station))); }

Answer getRegister(Call& call) { return json(registerView(call.station)); }

Answer getClock(Call& call) { return json(clockView(call.station)); }

Answer getCard(Call& call) { return json(cardView(call.station)); }

Answer getSwitches(Call& call) { return json(*faultsView(call.station).find("switches")); }

Answer getFaults(Call& call) { return json(faultsView(call.station)); }

Answer getFault(Call& call) {
  const int number = call.number();
  for (const Faults::Rule& rule : call.station.faults.rules()) {
    if (rule.number == number) return json(ruleView(rule));
  }
  throw Refusal(404, "no such rule", "path");
}

/// What the page lacks, which knows the documents up to one of which it has some lines, and the conversation up to an
/// entry.
Answer getChanges(Call& call) {
  const int known = call.query("document", 0, 0, kGreatestNumber);
  const int knownLines = call.query("lines", 0, 0, kGreatestNumber);
  const int knownEntry = call.query("entry", 0, 0, kGreatestNumber);
  const int limit = call.query("limit", 20, 1, 100);
  Json::List documents, entries;
  const auto& all = call.station.device.roll().documents();
  const int newest = all.empty() ? 0 : all.back().id;
  for (const Document& document : all) {
    // The known document may have grown, however many followed it.
    if (document.id < known || (document.id != known && document.id <= newest - limit)) continue;
    const auto lines = document.id == known ? static_cast<std::size_t>(knownLines) : 0;
    documents.push_back(printedView(call.station, document, std::min(lines, document.lines.size())));
  }
  const auto& conversation = call.station.conversation();
  const int newestEntry = conversation.empty() ? 0 : conversation.back().id;
  for (const Station::Entry& entry : conversation) {
    if (entry.id > knownEntry && entry.id > newestEntry - 200) entries.push_back(entryView(entry));
  }
  return json(Json{{"started", call.station.started},
                   {"register", registerView(call.station)},
                   {"faults", faultsView(call.station)},
                   {"firstDocument", call.station.device.roll().firstId()},
                   {"documents", documents},
                   {"firstEntry", call.station.firstEntry()},
                   {"conversation", entries}});
}

Answer getConversation(Call& call) {
  const int after = call.query("after", 0, 0, kGreatestNumber);
  const auto limit = static_cast<std::size_t>(call.query("limit", 1000, 1, 1000));
  Json::List entries;
  for (const Station::Entry& entry : call.station.conversation()) {
    if (entry.id > after && entries.size() < limit) entries.push_back(entryView(entry));
  }
  return json(entries);
}

Answer getDocuments(Call& call) {
  return page(
      call, [](const Document&) { return true; },
      [&call](const Document& document) { return printedView(call.station, document, 0); });
}

Answer getDocument(Call& call) {
  const std::string ending = takeEnding(call.item);
  const Document* document = call.station.device.roll().find(call.number());
  if (!document) throw Refusal(404, "no such document", "path");
  return show(call, *document, ending);
}

Answer getReceipts(Call& call) {
  return page(
      call, [](const Document& document) { return document.kind == Document::Kind::kReceipt; },
      [&call](const Document& document) { return documentView(call.station, document); });
}

Answer getReceipt(Call& call) {
  const std::string ending = takeEnding(call.item);
  const bool isLast = call.item == "last";
  const int number = isLast ? 0 : call.number();
  const int closure = call.query("z", call.station.device.fiscal().closures + 1, 1, kGreatestNumber);
  const auto& all = call.station.device.roll().documents();
  const auto found = std::find_if(all.rbegin(), all.rend(), [&](const Document& document) {
    if (document.kind != Document::Kind::kReceipt) return false;
    if (isLast) return document.state != Document::State::kOpen;
    return document.number == number && document.closure == closure;
  });
  if (found == all.rend()) return missing(call, "no such receipt");
  if (found->state == Document::State::kOpen && call.wait() > 0) return missing(call, "");
  return show(call, *found, ending);
}

Answer getHappenings(Call& call) {
  // Without a number, from now on; a request that is handled again still means the same.
  call.request.query.emplace("after", std::to_string(call.wait() > 0 ? call.station.lastHappening() : 0));
  const int after = call.query("after", 0, 0, kGreatestNumber);
  const auto limit = static_cast<std::size_t>(call.query("limit", 100, 1, 1000));
  const auto kind = call.request.query.find("kind");
  if (kind != call.request.query.end() && !happeningNamed(kind->second)) {
    throw Refusal(400, "one of these is expected: " + happeningNames(), "query/kind");
  }
  Json::List views;
  for (const Station::Happening& happening : call.station.happenings()) {
    if (happening.id <= after || views.size() == limit) continue;
    if (kind != call.request.query.end() && happening.kind != *happeningNamed(kind->second)) continue;
    views.push_back(happeningView(call.station, happening));
  }
  return views.empty() && call.wait() > 0 ? missing(call, "") : json(views);
}

Answer postVerify(Call& call) {
  const Wishes wishes(call.request.body, {"printed", "sold", "paid", "times"});
  if (wishes.has("printed") + wishes.has("sold") + wishes.has("paid") != 1) {
    throw Refusal(400, "one of printed, sold and paid is expected", "body");
  }
  const int times = wishes.has("times") ? wishes.whole("times", 0, kGreatestNumber) : -1;
  int count = 0;
  if (wishes.has("printed")) {
    const Text text = fromUtf8(wishes.text("printed", 1000));
    for (const Document& document : call.station.device.roll().documents()) {
      count += static_cast<int>(countPrinted(document, text));
    }
  }
  if (wishes.has("sold")) count = countIn(call.station, "lines", wishes.object("sold"));
  if (wishes.has("paid")) count = countIn(call.station, "tenders", wishes.object("paid"));
  if (times < 0 || count == times) return json(Json{{"count", count}});
  const std::string text = std::to_string(count) + " times, not " + std::to_string(times);
  Answer wrong = Refusal(409, text, "body/times", Json{{"count", count}}).answer();
  wrong.waitSeconds = call.wait();
  return wrong;
}

}  // namespace mirvane::emulator
