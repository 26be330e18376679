#include "emulator/program/web/views.h"

#include <algorithm>
#include <cstdio>

#include "emulator/decoder.h"
#include "protocol/device_codes.h"
#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

constexpr const char* kVatLetters[] = {"A", "B", "C", "D", "E"};

/// Hundredths as a JSON number: the nearest to it, as any reader of "12.34" has it.
double hundredths(std::int64_t value) { return static_cast<double>(value) / 100; }

std::string utf8(const std::string& codePageBytes) { return toUtf8(fromCodePage(codePageBytes)); }

const char* tenderName(int number) {
  constexpr const char* kNames[] = {"cash", "card", "cheque", "card"};
  return kNames[number - 1];
}

Json printerWords(int status) {
  Json::List words;
  for (const auto& [name, bit] : kPrinterSwitches) {
    if (status & bit) words.emplace_back(name);
  }
  return words;
}

Json fiscalView(int status) {
  return Json{
      {"dayOpen", (status & 0x02) != 0}, {"receiptOpen", (status & 0x04) != 0}, {"inPayment", (status & 0x08) != 0}};
}

Json::List taxesView(const VatSums& gross, const VatSums& vat, const VatRates& rates) {
  Json::List taxes;
  for (std::size_t i = 0; i < kVatCategories; ++i) {
    taxes.push_back(Json{{"category", kVatLetters[i]},
                         {"rate", hundredths(rates[i])},
                         {"gross", hundredths(gross[i])},
                         {"net", hundredths(gross[i] - vat[i])},
                         {"vat", hundredths(vat[i])}});
  }
  return taxes;
}

Json itemView(const Item& item) {
  constexpr const char* kKinds[] = {"sale", "void", "refund"};
  return Json{{"kind", kKinds[static_cast<std::size_t>(item.kind)]},
              {"description", toUtf8(item.description)},
              {"comment", toUtf8(item.comment)},
              {"quantity", static_cast<double>(item.quantity) / 1000},
              {"price", hundredths(item.price)},
              {"amount", hundredths(item.amount())},
              {"vat", kVatLetters[item.vat]},
              {"department", item.department},
              {"category", item.category}};
}

Json adjustmentView(const Adjustment& adjustment) {
  Json view{{"kind", adjustment.isDiscount ? "discount" : "mark-up"},
            {"description", toUtf8(adjustment.description)},
            {"comment", toUtf8(adjustment.comment)},
            {"amount", hundredths(adjustment.change())}};
  // The line that it applies to; none for the subtotal.
  view.set("line", adjustment.isOnItem ? Json(adjustment.item + 1) : Json());
  return view;
}

Json tenderView(const Payment& payment) {
  Json view{{"tender", tenderName(payment.number)},
            {"description", toUtf8(payment.description)},
            {"amount", hundredths(payment.amount)}};
  if (payment.terminal > 0) view.update(Json{{"terminal", payment.terminal}, {"approval", payment.approval}});
  return view;
}

void addReceipt(Json& view, const Receipt& receipt, const VatRates& rates) {
  Json::List lines, adjustments, taxes, tenders;
  for (const Item& item : receipt.items()) lines.push_back(itemView(item));
  for (const Adjustment& adjustment : receipt.adjustments()) adjustments.push_back(adjustmentView(adjustment));
  for (const Payment& payment : receipt.payments()) tenders.push_back(tenderView(payment));
  VatSums vat{};
  for (std::size_t i = 0; i < kVatCategories; ++i) vat[i] = includedVat(receipt.vatSums()[i], rates[i]);
  for (Json& tax : taxesView(receipt.vatSums(), vat, rates)) {
    if (*tax.find("gross")->as<double>() != 0) taxes.push_back(std::move(tax));
  }
  view.set("lines", lines);
  view.set("adjustments", adjustments);
  view.set("taxes", taxes);
  view.set("tenders", tenders);
  view.set("total", hundredths(receipt.total()));
  view.set("paid", hundredths(receipt.paid()));
  view.set("change", hundredths(receipt.change()));
}

Json printedLines(const auto& lines) {
  Json::List view;
  for (const PrintedLine& line : lines) view.push_back(Json{{"text", toUtf8(line.text)}, {"size", line.size}});
  return view;
}

Json fieldsView(const std::vector<DecodedField>& fields) {
  Json::List view;
  for (const DecodedField& field : fields) view.push_back(Json{{"name", field.name}, {"value", toUtf8(field.value)}});
  return view;
}

}  // namespace

Json cardView(Station& station) {
  const CardPayments& cards = station.device.cards();
  Json::List next;
  for (const Code code : cards.options.next) next.emplace_back(static_cast<int>(code));
  Json view{{"outcome", static_cast<int>(cards.options.otherwise)},
            {"next", next},
            {"seconds", cards.options.seconds},
            {"answers", cards.options.answers},
            {"running", nullptr}};
  if (cards.underWay()) view.set("running", tenderView(*cards.underWay()));
  return view;
}

Json clockView(Station& station) {
  return Json{
      {"time", isoTime(station.device.time())}, {"offset", station.clock.offset}, {"runs", station.clock.runs()}};
}

Json ruleView(const Faults::Rule& rule) { return Json{{"number", rule.number}, {"rule", rule.text}}; }

Json displayView(const Display& display) { return Json::List{toUtf8(display[0]), toUtf8(display[1])}; }

Json registerView(Station& station) {
  const FiscalState& fiscal = station.device.fiscal();
  const DayTotals& day = fiscal.day;
  Json view{{"serialNumber", fiscal.serialNumber},    {"vatNumber", fiscal.vatNumber},
            {"time", isoTime(station.device.time())}, {"clockOffset", station.clock.offset},
            {"header", printedLines(fiscal.header)},  {"z", fiscal.closures + 1},
            {"lastReceipt", fiscal.lastReceiptNumber}};
  view.set("receipt", nullptr);
  if (fiscal.receipt) {
    view.set("receipt", Json{{"number", fiscal.receipt->number()},
                             {"total", hundredths(fiscal.receipt->total())},
                             {"paid", hundredths(fiscal.receipt->paid())},
                             {"remaining", hundredths(fiscal.receipt->remaining())}});
  }
  view.set("day", Json{{"receipts", day.receipts},
                       {"cashDocuments", day.cashDocuments},
                       {"total", hundredths(sumOf(day.gross))},
                       {"vat", hundredths(sumOf(day.vat))},
                       {"voids", hundredths(day.voids)},
                       {"refunds", hundredths(day.refunds)},
                       {"cancelled", hundredths(day.cancelled)},
                       {"discounts", hundredths(day.discounts)},
                       {"markUps", hundredths(day.markUps)},
                       {"cashIn", hundredths(day.cashIn)},
                       {"cashOut", hundredths(day.cashOut)},
                       {"cash", hundredths(day.payments[0])},
                       {"card", hundredths(day.payments[1])},
                       {"cheque", hundredths(day.payments[2])},
                       {"taxes", taxesView(day.gross, day.vat, fiscal.vatRates)}});
  view.set("grandTotal", hundredths(fiscal.grandTotal + sumOf(day.gross)));
  view.set("printer", printerWords(station.faults.switches.printer));
  view.set("fiscal", fiscalView(fiscal.status()));
  view.set("display", displayView(station.device.display()));
  view.set("drawerOpenings", station.device.drawerOpenings());
  view.set("card", cardView(station));
  view.set("lastHappening", station.lastHappening());
  return view;
}

Json faultsView(Station& station) {
  Json::List rules;
  Json switches = Json::Object{};
  for (const Faults::Rule& rule : station.faults.rules()) {
    rules.push_back(ruleView(rule));
  }
  const Faults::Switches& held = station.faults.switches;
  for (const auto& [name, bit] : kPrinterSwitches) switches.set(name, (held.printer & bit) != 0);
  switches.set("busy", held.isBusy);
  switches.set("off", held.isOff);
  for (const auto& [name, member] : kConditions) switches.set(name, station.device.conditions().*member);
  return Json{{"rules", rules}, {"switches", switches}};
}

Json documentView(Station& station, const Document& document) {
  constexpr const char* kKinds[] = {"receipt", "cash in", "cash out", "report", "note"};
  constexpr const char* kStates[] = {"open", "closed", "cancelled"};
  Json view{{"id", document.id},
            {"kind", kKinds[static_cast<std::size_t>(document.kind)]},
            {"state", kStates[static_cast<std::size_t>(document.state)]}};
  if (document.kind == Document::Kind::kNote) return view;
  view.set("z", document.closure);
  view.set("time", isoTime(document.time));
  if (document.kind != Document::Kind::kReceipt) return view;
  view.set("number", document.number);
  const auto& open = station.device.fiscal().receipt;
  const Receipt* receipt = document.receipt ? &*document.receipt : open ? &*open : nullptr;
  if (receipt) addReceipt(view, *receipt, document.vatRates);
  return view;
}

Json paperView(const Document& document, std::size_t first) {
  Json::List lines;
  for (std::size_t i = first; i < document.lines.size(); ++i) {
    const PaperLine& line = document.lines[i];
    lines.push_back(Json{{"text", toUtf8(line.text)}, {"size", line.size}, {"cut", line.isCut}});
  }
  return lines;
}

Json replyView(const Exchange& exchange) {
  const DecodedReply reply = decodeReply(exchange.reply, exchange.command);
  Json view{{"raw", utf8(exchange.reply)}};
  if (!reply.isWhole) return view;
  view.set("code", reply.code);
  view.set("text", toUtf8(deviceErrorText(reply.code)));
  view.set("printer", printerWords(reply.printerStatus));
  view.set("fiscal", fiscalView(reply.fiscalStatus));
  view.set("fields", fieldsView(reply.fields));
  return view;
}

Json entryView(const Station::Entry& entry) {
  const Exchange& exchange = entry.exchange;
  const DecodedCommand command = decodeCommand(exchange.command);
  char fraction[8];
  std::snprintf(fraction, sizeof fraction, ".%03d", entry.milliseconds % 1000);
  Json view{{"id", entry.id},
            {"time", isoTime(entry.time) + fraction},
            {"line", entry.line},
            {"peer", exchange.peer.empty() ? Json() : Json(exchange.peer)},
            {"command",
             Json{{"raw", utf8(exchange.command)}, {"name", command.name}, {"fields", fieldsView(command.fields)}}}};
  view.set("reply", exchange.reply.empty() ? Json() : replyView(exchange));
  view.set("fault", exchange.fault.rule.empty() ? Json() : Json(exchange.fault.rule));
  view.set("repeat", exchange.isRepeat);
  view.set("struck", nullptr);
  if (exchange.fault.at != Fault::At::kAnswer) {
    view.set("struck", Json{{"what", sentName(exchange.fault.at)}, {"fault", exchange.fault.name}});
  }
  return view;
}

namespace {

using Kind = Station::Happening::Kind;

constexpr std::pair<const char*, Kind> kHappenings[] = {
    {"exchange", Kind::kExchange}, {"struck", Kind::kStruck}, {"receipt", Kind::kReceipt}, {"report", Kind::kReport},
    {"cash", Kind::kCash},         {"drawer", Kind::kDrawer}, {"display", Kind::kDisplay}};

}  // namespace

std::optional<Kind> happeningNamed(std::string_view name) {
  for (const auto& [known, kind] : kHappenings) {
    if (known == name) return kind;
  }
  return std::nullopt;
}

std::string happeningNames() {
  std::string names;
  for (const auto& [name, kind] : kHappenings) names.append(names.empty() ? "" : ", ").append(name);
  return names;
}

Json happeningView(Station& station, const Station::Happening& happening) {
  const auto* const named = std::find_if(std::begin(kHappenings), std::end(kHappenings),
                                         [&](const auto& row) { return row.second == happening.kind; });
  Json view{{"id", happening.id}, {"kind", named->first}, {"time", isoTime(happening.time)}};
  switch (happening.kind) {
    case Kind::kExchange:
    case Kind::kStruck: {
      const int at = happening.subject - station.firstEntry();
      if (at >= 0) view.set("entry", entryView(station.conversation()[static_cast<std::size_t>(at)]));
      break;
    }
    case Kind::kDrawer:
      view.set("drawerOpenings", happening.subject);
      break;
    case Kind::kDisplay:
      view.set("display", displayView(happening.display));
      break;
    default:
      if (const Document* document = station.device.roll().find(happening.subject)) {
        view.set("document", documentView(station, *document));
      }
  }
  return view;
}

}  // namespace mirvane::emulator
