#include <map>
#include <nlohmann/json.hpp>

#include "emulator/program/station.h"

namespace mirvane::emulator {
namespace {

using Json = nlohmann::json;

// Every class lists its members once, for writing and for reading: `visit(name, member)`.

template <class Visitor>
void visitMembers(PaperLine& line, Visitor&& visit) {
  visit("text", line.text);
  visit("size", line.size);
  visit("isCut", line.isCut);
}

template <class Visitor>
void visitMembers(PrintedLine& line, Visitor&& visit) {
  visit("text", line.text);
  visit("size", line.size);
}

template <class Visitor>
void visitMembers(Settings& settings, Visitor&& visit) {
  visit("printerId", settings.printerId);
  visit("printerDescription", settings.printerDescription);
  visit("cashier", settings.cashier);
  visit("printsDepartment", settings.printsDepartment);
  visit("opensDrawerOnTotal", settings.opensDrawerOnTotal);
  visit("printsOnNoSale", settings.printsOnNoSale);
  visit("printsVatDetail", settings.printsVatDetail);
  visit("printsFooter", settings.printsFooter);
  visit("topLogo", settings.topLogo);
  visit("bottomLogo", settings.bottomLogo);
  visit("usesCutter", settings.usesCutter);
  visit("usesDisplay", settings.usesDisplay);
}

template <class Visitor>
void visitMembers(ServerSettings& server, Visitor&& visit) {
  visit("isActive", server.isActive);
  visit("url", server.url);
  visit("port", server.port);
  visit("key", server.key);
  visit("qrUrl", server.qrUrl);
}

template <class Visitor>
void visitMembers(CardTerminal& terminal, Visitor&& visit) {
  visit("isEnabled", terminal.isEnabled);
  visit("middleware", terminal.middleware);
  visit("ip", terminal.ip);
  visit("port", terminal.port);
  visit("description", terminal.description);
  visit("variant", terminal.variant);
  visit("timeout", terminal.timeout);
  visit("bitmaps", terminal.bitmaps);
  visit("acquirer", terminal.acquirer);
  visit("middlewareTerminal", terminal.middlewareTerminal);
  visit("transaction", terminal.transaction);
  visit("registerIdFormat", terminal.registerIdFormat);
}

template <class Visitor>
void visitMembers(SalesGroup& group, Visitor&& visit) {
  visit("description", group.description);
  visit("amount", group.amount);
  visit("count", group.count);
}

template <class Visitor>
void visitMembers(Department& department, Visitor&& visit) {
  visitMembers(static_cast<SalesGroup&>(department), visit);
  visit("category", department.category);
}

template <class Visitor>
void visitMembers(DayTotals& day, Visitor&& visit) {
  visit("gross", day.gross);
  visit("vat", day.vat);
  visit("voids", day.voids);
  visit("refunds", day.refunds);
  visit("cancelled", day.cancelled);
  visit("discounts", day.discounts);
  visit("markUps", day.markUps);
  visit("payments", day.payments);
  visit("cashIn", day.cashIn);
  visit("cashOut", day.cashOut);
  visit("receipts", day.receipts);
  visit("cashDocuments", day.cashDocuments);
}

template <class Visitor>
void visitMembers(CashDocument& document, Visitor&& visit) {
  visit("isIn", document.isIn);
  visit("amount", document.amount);
}

template <class Visitor>
void visitMembers(Item& item, Visitor&& visit) {
  visit("kind", item.kind);
  visit("description", item.description);
  visit("comment", item.comment);
  visit("quantity", item.quantity);
  visit("price", item.price);
  visit("department", item.department);
  visit("vat", item.vat);
  visit("category", item.category);
}

template <class Visitor>
void visitMembers(Adjustment& adjustment, Visitor&& visit) {
  visit("isDiscount", adjustment.isDiscount);
  visit("isOnItem", adjustment.isOnItem);
  visit("department", adjustment.department);
  visit("description", adjustment.description);
  visit("comment", adjustment.comment);
  visit("amount", adjustment.amount);
  visit("shares", adjustment.shares);
  visit("item", adjustment.item);
}

template <class Visitor>
void visitMembers(Payment& payment, Visitor&& visit) {
  visit("number", payment.number);
  visit("description", payment.description);
  visit("secondDescription", payment.secondDescription);
  visit("amount", payment.amount);
  visit("terminal", payment.terminal);
  visit("approval", payment.approval);
}

template <class Visitor>
void visitMembers(Journal::File& file, Visitor&& visit) {
  visit("name", file.name);
  visit("bytes", file.bytes);
}

template <class Visitor>
void visitMembers(Line::Memory& memory, Visitor&& visit) {
  visit("command", memory.command);
  visit("reply", memory.reply);
  visit("awaitsAck", memory.awaitsAck);
}

template <class Visitor>
void visitMembers(FiscalState& fiscal, Visitor&& visit) {
  visit("serialNumber", fiscal.serialNumber);
  visit("header", fiscal.header);
  visit("footer", fiscal.footer);
  visit("nextFooter", fiscal.nextFooter);
  visit("vatNumber", fiscal.vatNumber);
  visit("settings", fiscal.settings);
  visit("server", fiscal.server);
  visit("cardTerminals", fiscal.cardTerminals);
  visit("vatRates", fiscal.vatRates);
  visit("departments", fiscal.departments);
  visit("categories", fiscal.categories);
  visit("closures", fiscal.closures);
  visit("grandTotal", fiscal.grandTotal);
  visit("lastReport", fiscal.lastReport);
  visit("isDayOpen", fiscal.isDayOpen);
  visit("day", fiscal.day);
  visit("lastReceiptNumber", fiscal.lastReceiptNumber);
  visit("receipt", fiscal.receipt);
  visit("cashDocument", fiscal.cashDocument);
}

template <class Class, class Visitor>
void visitMembers(Class& object, Visitor&& visit) {
  object.visitMemory(visit);
}

template <class Value>
constexpr bool isNumber = std::is_arithmetic_v<Value> || std::is_enum_v<Value>;
template <class Value>
concept Optional = requires(Value& value) {
  value.emplace();
  value.has_value();
};
template <class Value>
concept Map = requires {
  typename Value::mapped_type;
};
template <class Value>
concept List = requires(Value& value) {
  value.begin();
};

template <class Value>
Json write(Value& value) {
  if constexpr (std::is_same_v<Value, Text>) {
    return toUtf8(value);
  } else if constexpr (std::is_same_v<std::remove_const_t<Value>, std::string>) {
    // Bytes are code page 1253, in which every byte is a character.
    return toUtf8(fromCodePage(value));
  } else if constexpr (isNumber<Value>) {
    return value;
  } else if constexpr (Optional<Value>) {
    return value ? write(*value) : Json();
  } else if constexpr (Map<Value>) {
    // As pairs, whatever the key is.
    Json pairs = Json::array();
    for (auto& [key, mapped] : value) pairs.push_back(Json::array({write(key), write(mapped)}));
    return pairs;
  } else if constexpr (List<Value>) {
    Json list = Json::array();
    for (auto& element : value) list.push_back(write(element));
    return list;
  } else {
    Json object = Json::object();
    visitMembers(value, [&object](const char* name, auto& member) { object[name] = write(member); });
    return object;
  }
}

/// Throws one of the library's exceptions for what does not fit.
template <class Value>
void read(const Json& json, Value& value) {
  if constexpr (std::is_same_v<Value, Text>) {
    value = fromUtf8(json.get<std::string>());
  } else if constexpr (std::is_same_v<Value, std::string>) {
    value = toCodePage(fromUtf8(json.get<std::string>()));
  } else if constexpr (isNumber<Value>) {
    value = json.get<Value>();
  } else if constexpr (Optional<Value>) {
    value.reset();
    if (!json.is_null()) read(json, value.emplace());
  } else if constexpr (Map<Value>) {
    value.clear();
    for (const Json& pair : json) {
      typename Value::key_type key;
      read(pair.at(0), key);
      read(pair.at(1), value[key]);
    }
  } else if constexpr (requires { value.emplace_back(); }) {
    value.clear();
    for (const Json& element : json) read(element, value.emplace_back());
  } else if constexpr (List<Value>) {
    for (std::size_t i = 0; i < value.size(); ++i) read(json.at(i), value[i]);
  } else {
    visitMembers(value, [&json](const char* name, auto& member) { read(json.at(name), member); });
  }
}

constexpr int kFormat = 1;

}  // namespace

std::string rememberedState(Station& station) {
  std::map<std::string, Line::Memory> lines;
  for (const auto& [name, line] : station.lines()) lines[name] = line->memory();
  Json json{{"format", kFormat}};
  json["register"] = write(station.device.fiscal());
  json["journal"] = write(station.device.journal());
  json["cards"] = write(station.device.cards());
  json["lines"] = write(lines);
  json["clockOffset"] = station.clock.offset;
  return json.dump(1);
}

void recallState(Station& station, const std::string& text) {
  try {
    const Json json = Json::parse(text);
    if (json.at("format") != kFormat) throw StateError("written by another version");
    FiscalState fiscal;
    read(json.at("register"), fiscal);
    std::map<std::string, Line::Memory> lines;
    read(json.at("lines"), lines);
    Journal journal;
    read(json.at("journal"), journal);
    CardPayments cards;
    read(json.at("cards"), cards);
    station.clock.offset = json.at("clockOffset").get<std::int64_t>();
    journal.rewind();
    station.device.restore(std::move(fiscal), std::move(journal), std::move(cards));
    for (const auto& [name, line] : station.lines()) line->setMemory(lines[name]);
  } catch (const Json::exception& error) {
    throw StateError(std::string("not the memory of a register: ") + error.what());
  }
}

}  // namespace mirvane::emulator
