#include "emulator/program/views.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "emulator/decoder.h"
#include "protocol/device_codes.h"

namespace mirvane::emulator {
namespace {

constexpr const char* kVatLetters[] = {"A", "B", "C", "D", "E"};

/// Hundredths as a JSON number: the nearest to it, as any reader of "12.34" has it.
double hundredths(std::int64_t value) { return static_cast<double>(value) / 100; }

std::string isoTime(const platform::LocalTime& time) {
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", time.year, time.month, time.day, time.hour,
                time.minute, time.second);
  return text;
}

std::string utf8(const std::string& codePageBytes) { return toUtf8(fromCodePage(codePageBytes)); }

const char* tenderName(int number) {
  constexpr const char* kNames[] = {"cash", "card", "cheque", "card"};
  return kNames[number - 1];
}

Json printerWords(int status) {
  Json words = Json::array();
  for (const auto& [name, bit] : kPrinterSwitches) {
    if (status & bit) words.push_back(name);
  }
  return words;
}

Json fiscalView(int status) {
  return {
      {"dayOpen", (status & 0x02) != 0}, {"receiptOpen", (status & 0x04) != 0}, {"inPayment", (status & 0x08) != 0}};
}

Json taxesView(const VatSums& gross, const VatSums& vat, const VatRates& rates) {
  Json taxes = Json::array();
  for (std::size_t i = 0; i < kVatCategories; ++i) {
    taxes.push_back({{"category", kVatLetters[i]},
                     {"rate", hundredths(rates[i])},
                     {"gross", hundredths(gross[i])},
                     {"net", hundredths(gross[i] - vat[i])},
                     {"vat", hundredths(vat[i])}});
  }
  return taxes;
}

Json itemView(const Item& item) {
  constexpr const char* kKinds[] = {"sale", "void", "refund"};
  return {{"kind", kKinds[static_cast<std::size_t>(item.kind)]},
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
  // The line that it is on; none for one on the subtotal.
  view["line"] = adjustment.isOnItem ? Json(adjustment.item + 1) : Json();
  return view;
}

Json tenderView(const Payment& payment) {
  Json view{{"tender", tenderName(payment.number)},
            {"description", toUtf8(payment.description)},
            {"amount", hundredths(payment.amount)}};
  if (payment.terminal > 0) view.update({{"terminal", payment.terminal}, {"approval", payment.approval}});
  return view;
}

void addReceipt(Json& view, const Receipt& receipt, const VatRates& rates) {
  Json lines = Json::array(), adjustments = Json::array(), taxes = Json::array(), tenders = Json::array();
  for (const Item& item : receipt.items()) lines.push_back(itemView(item));
  for (const Adjustment& adjustment : receipt.adjustments()) adjustments.push_back(adjustmentView(adjustment));
  for (const Payment& payment : receipt.payments()) tenders.push_back(tenderView(payment));
  VatSums vat{};
  for (std::size_t i = 0; i < kVatCategories; ++i) vat[i] = includedVat(receipt.vatSums()[i], rates[i]);
  for (Json& tax : taxesView(receipt.vatSums(), vat, rates)) {
    if (tax["gross"] != 0.0) taxes.push_back(std::move(tax));
  }
  view["lines"] = lines;
  view["adjustments"] = adjustments;
  view["taxes"] = taxes;
  view["tenders"] = tenders;
  view["total"] = hundredths(receipt.total());
  view["paid"] = hundredths(receipt.paid());
  view["change"] = hundredths(receipt.change());
}

Json printedLines(const auto& lines) {
  Json view = Json::array();
  for (const PrintedLine& line : lines) view.push_back({{"text", toUtf8(line.text)}, {"size", line.size}});
  return view;
}

Json cardView(Station& station) {
  const CardPayments& cards = station.device.cards();
  Json view{{"outcome", static_cast<int>(cards.options.otherwise)},
            {"next", Json::array()},
            {"seconds", cards.options.seconds},
            {"answers", cards.options.answers},
            {"running", nullptr}};
  for (const Code code : cards.options.next) view["next"].push_back(static_cast<int>(code));
  if (cards.underWay()) view["running"] = tenderView(*cards.underWay());
  return view;
}

Json fieldsView(const std::vector<DecodedField>& fields) {
  Json view = Json::array();
  for (const DecodedField& field : fields) view.push_back({{"name", field.name}, {"value", toUtf8(field.value)}});
  return view;
}

}  // namespace

Json registerView(Station& station) {
  const FiscalState& fiscal = station.device.fiscal();
  const DayTotals& day = fiscal.day;
  Json view{{"serialNumber", fiscal.serialNumber},    {"vatNumber", fiscal.vatNumber},
            {"time", isoTime(station.device.time())}, {"clockOffset", station.clockOffset},
            {"header", printedLines(fiscal.header)},  {"z", fiscal.closures + 1},
            {"lastReceipt", fiscal.lastReceiptNumber}};
  view["receipt"] = nullptr;
  if (fiscal.receipt) {
    view["receipt"] = {{"number", fiscal.receipt->number()},
                       {"total", hundredths(fiscal.receipt->total())},
                       {"paid", hundredths(fiscal.receipt->paid())},
                       {"remaining", hundredths(fiscal.receipt->remaining())}};
  }
  view["day"] = {{"receipts", day.receipts},
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
                 {"taxes", taxesView(day.gross, day.vat, fiscal.vatRates)}};
  view["grandTotal"] = hundredths(fiscal.grandTotal + sumOf(day.gross));
  view["printer"] = printerWords(station.faults.switches.printer);
  view["fiscal"] = fiscalView(fiscal.status());
  view["display"] = {toUtf8(station.device.display()[0]), toUtf8(station.device.display()[1])};
  view["drawerOpenings"] = station.device.drawerOpenings();
  view["card"] = cardView(station);
  return view;
}

Json faultsView(const Station& station) {
  Json rules = Json::array(), switches = Json::object();
  for (const Faults::Rule& rule : station.faults.rules()) {
    rules.push_back({{"number", rule.number}, {"rule", rule.text}});
  }
  const Faults::Switches& held = station.faults.switches;
  for (const auto& [name, bit] : kPrinterSwitches) switches[name] = (held.printer & bit) != 0;
  switches["busy"] = held.isBusy;
  switches["off"] = held.isOff;
  return {{"rules", rules}, {"switches", switches}};
}

Json documentView(Station& station, const Document& document) {
  constexpr const char* kKinds[] = {"receipt", "cash in", "cash out", "report", "note"};
  constexpr const char* kStates[] = {"open", "closed", "cancelled"};
  Json view{{"id", document.id},
            {"kind", kKinds[static_cast<std::size_t>(document.kind)]},
            {"state", kStates[static_cast<std::size_t>(document.state)]}};
  if (document.kind == Document::Kind::kNote) return view;
  view["z"] = document.closure;
  view["time"] = isoTime(document.time);
  if (document.kind != Document::Kind::kReceipt) return view;
  view["number"] = document.number;
  const auto& open = station.device.fiscal().receipt;
  const Receipt* receipt = document.receipt ? &*document.receipt : open ? &*open : nullptr;
  if (receipt) addReceipt(view, *receipt, document.vatRates);
  return view;
}

Json paperView(const Document& document, std::size_t first) {
  Json lines = Json::array();
  for (std::size_t i = first; i < document.lines.size(); ++i) {
    const PaperLine& line = document.lines[i];
    lines.push_back({{"text", toUtf8(line.text)}, {"size", line.size}, {"cut", line.isCut}});
  }
  return lines;
}

Json replyView(const Exchange& exchange) {
  const DecodedReply reply = decodeReply(exchange.reply, exchange.command);
  Json view{{"raw", utf8(exchange.reply)}};
  if (!reply.isWhole) return view;
  view["code"] = reply.code;
  view["text"] = toUtf8(deviceErrorText(reply.code));
  view["printer"] = printerWords(reply.printerStatus);
  view["fiscal"] = fiscalView(reply.fiscalStatus);
  view["fields"] = fieldsView(reply.fields);
  return view;
}

Json entryView(const Station::Entry& entry) {
  const Exchange& exchange = entry.exchange;
  const DecodedCommand command = decodeCommand(exchange.command);
  char fraction[8];
  std::snprintf(fraction, sizeof fraction, ".%03d", entry.milliseconds % 1000);
  Json view{
      {"id", entry.id},
      {"time", isoTime(entry.time) + fraction},
      {"line", entry.line},
      {"peer", exchange.peer.empty() ? Json() : Json(exchange.peer)},
      {"command", {{"raw", utf8(exchange.command)}, {"name", command.name}, {"fields", fieldsView(command.fields)}}}};
  view["reply"] = exchange.reply.empty() ? Json() : replyView(exchange);
  view["fault"] = exchange.fault.rule.empty() ? Json() : Json(exchange.fault.rule);
  view["repeat"] = exchange.isRepeat;
  view["struck"] = nullptr;
  if (exchange.fault.at != Fault::At::kAnswer) {
    view["struck"] = {{"what", sentName(exchange.fault.at)}, {"fault", exchange.fault.name}};
  }
  return view;
}

}  // namespace mirvane::emulator
