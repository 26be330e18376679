#include <algorithm>
#include <set>
#include <span>

#include "emulator/command.h"

namespace mirvane::emulator {
namespace {

void tellLines(std::span<const PrintedLine> lines, ReplyWriter& reply) {
  for (const PrintedLine& line : lines) reply.whole(line.size).text(line.text);
}

Code readLines(const Fields& fields, std::span<PrintedLine> lines) {
  for (std::size_t i = 0; i < lines.size(); ++i) {
    lines[i] = {fields.text(2 * i + 1), fields.whole(2 * i)};
    if (lines[i].size < 1 || lines[i].size > 4) return Code::kFieldRange;
  }
  return Code::kOk;
}

Code tellHeader(Register& machine, const Fields&, ReplyWriter& reply) {
  tellLines(machine.fiscal.header, reply);
  return Code::kOk;
}

Code setHeader(Register& machine, const Fields& fields, ReplyWriter&) {
  Code code = machine.fiscal.dayProblem();
  if (code != Code::kOk) return code;
  auto header = machine.fiscal.header;
  code = readLines(fields, header);
  if (code != Code::kOk) return code;
  const auto isEmpty = [](const PrintedLine& line) { return isBlank(line.text); };
  if (std::all_of(header.begin(), header.end(), isEmpty)) return Code::kEmptyHeader;
  machine.fiscal.header = header;
  return Code::kOk;
}

Code tellFooter(Register& machine, const Fields&, ReplyWriter& reply) {
  tellLines(machine.fiscal.footer, reply);
  return Code::kOk;
}

Code setFooter(Register& machine, const Fields& fields, ReplyWriter&) {
  Code code = machine.fiscal.documentProblem();
  if (code != Code::kOk) return code;
  auto footer = machine.fiscal.footer;
  code = readLines(fields, footer);
  if (code == Code::kOk) machine.fiscal.footer = footer;
  return code;
}

Code setNextFooter(Register& machine, const Fields& fields, ReplyWriter&) {
  const std::array<Text, 3> lines{fields.text(0), fields.text(1), fields.text(2)};
  machine.fiscal.nextFooter.reset();
  if (lines != std::array<Text, 3>{}) machine.fiscal.nextFooter = lines;
  return Code::kOk;
}

Code tellVatRates(Register& machine, const Fields&, ReplyWriter& reply) {
  for (const std::int64_t rate : machine.fiscal.vatRates) reply.text(formatFixed(rate, 2));
  return Code::kOk;
}

Code setVatRates(Register& machine, const Fields& fields, ReplyWriter&) {
  const Code code = machine.fiscal.dayProblem();
  if (code != Code::kOk) return code;
  VatRates rates{};
  for (std::size_t i = 0; i < kVatCategories; ++i) {
    rates[i] = fields.number(i);
    if (rates[i] < 0 || rates[i] > 9999) return Code::kFieldRange;
  }
  // Items are identified by their rate, so it must determine the category.
  if (std::set(rates.begin(), rates.end()).size() < rates.size()) return Code::kSameVatRate;
  machine.fiscal.vatRates = rates;
  return Code::kOk;
}

Code setDepartment(Register& machine, const Fields& fields, ReplyWriter&) {
  Department* department = groupAt(machine.fiscal.departments, fields.whole(0));
  if (!department) return Code::kDepartment;
  if (isBlank(fields.text(1))) return Code::kBlankDescription;
  if (!groupAt(machine.fiscal.categories, fields.whole(2))) return Code::kCategory;
  department->description = fields.text(1);
  department->category = fields.whole(2);
  return Code::kOk;
}

Code setCategory(Register& machine, const Fields& fields, ReplyWriter&) {
  SalesGroup* category = groupAt(machine.fiscal.categories, fields.whole(0));
  if (!category) return Code::kCategory;
  if (isBlank(fields.text(1))) return Code::kBlankDescription;
  category->description = fields.text(1);
  return Code::kOk;
}

Code tellSettings(Register& machine, const Fields&, ReplyWriter& reply) {
  const Settings& settings = machine.fiscal.settings;
  reply.whole(settings.printerId).text(settings.printerDescription).text(settings.cashier);
  reply.whole(settings.opensDrawerOnTotal).whole(settings.printsVatDetail).whole(settings.printsFooter);
  reply.whole(settings.topLogo).whole(settings.usesCutter).whole(settings.usesDisplay);
  return Code::kOk;
}

Code setSettings(Register& machine, const Fields& fields, ReplyWriter&) {
  if (fields.whole(0) < 0 || fields.whole(8) < 0 || fields.whole(9) < 0) return Code::kFieldRange;
  machine.fiscal.settings = {fields.whole(0), fields.text(1),  fields.text(2),  fields.flag(3),
                             fields.flag(4),  fields.flag(5),  fields.flag(6),  fields.flag(7),
                             fields.whole(8), fields.whole(9), fields.flag(10), fields.flag(11)};
  return Code::kOk;
}

Code setVatNumber(Register& machine, const Fields& fields, ReplyWriter&) {
  const Code code = machine.fiscal.dayProblem();
  if (code != Code::kOk) return code;
  const std::string_view number = fields.bytes(8);
  if (number.size() != 9 || number.find_first_not_of("0123456789") != std::string_view::npos) return Code::kVatNumber;
  machine.fiscal.vatNumber = number;
  return Code::kOk;
}

Code setServer(Register& machine, const Fields& fields, ReplyWriter&) {
  const std::string_view url = fields.bytes(1);
  const std::string_view port = fields.bytes(2);
  const std::string_view key = fields.bytes(3);
  if (port.empty() && !url.empty()) return Code::kFieldTooShort;
  if (!port.empty() && (fields.number(2) < 1 || fields.number(2) > 65535)) return Code::kFieldRange;
  const bool isKey = key.size() == 64 && key.find_first_not_of("0123456789ABCDEFabcdef") == std::string_view::npos;
  if (!key.empty() && !isKey) return Code::kServerKey;
  machine.fiscal.server = {fields.flag(0), std::string(url), std::string(port), std::string(key),
                           std::string(fields.bytes(7))};
  return Code::kOk;
}

Code tellServer(Register& machine, const Fields&, ReplyWriter& reply) {
  const ServerSettings& server = machine.fiscal.server;
  reply.whole(server.isActive).text(server.url).text(server.port).text(server.key);
  reply.text("").text("").text("").text(server.qrUrl);
  return Code::kOk;
}

/// A dialogue about the server leaves nothing behind that would have to end.
Code endServerDialogue(Register&, const Fields&, ReplyWriter&) { return Code::kOk; }

std::vector<FieldRule> sizedLines(std::size_t count) {
  std::vector<FieldRule> rules;
  for (std::size_t i = 0; i < count; ++i) {
    rules.insert(rules.end(), {field::whole("size", 2), field::text("line", Paper::kColumns)});
  }
  return rules;
}

/// Eighteen fields, all empty but the ninth.
std::vector<FieldRule> vatNumberFields() {
  std::vector<FieldRule> rules(18, field::empty());
  // Longer than any VAT number, so that a wrong one is refused as such.
  rules[8] = field::text("VAT number", 20);
  return rules;
}

}  // namespace

const std::vector<CommandRow>& configCommands() {
  using namespace field;
  constexpr FieldRule kLine = text("line", Paper::kColumns);
  constexpr FieldRule kUrl = text("URL", 200);
  constexpr FieldRule kName = text("description", 35);
  static const std::vector<CommandRow> kCommands = {
      {"h",
       "",
       "read header",
       {},
       false,
       tellHeader,
       {"size", "line", "size", "line", "size", "line", "size", "line", "size", "line"}},
      {"H", "", "header", sizedLines(5), false, setHeader},
      {"{", "", "read footer", {}, false, tellFooter, {"size", "line", "size", "line", "size", "line"}},
      {"Y", "", "footer", sizedLines(3), false, setFooter},
      {"m", "", "next footer", {kLine, kLine, kLine}, false, setNextFooter, {}, true},
      {"e", "", "read VAT rates", {}, false, tellVatRates, {"rate A", "rate B", "rate C", "rate D", "rate E"}},
      {"b",
       "",
       "VAT rates",
       {amount("rate A"), amount("rate B"), amount("rate C"), amount("rate D"), amount("rate E")},
       false,
       setVatRates},
      {"d", "", "department", {whole("department", 3), kName, whole("category", 3)}, false, setDepartment},
      {"K", "", "category", {whole("category", 3), kName}, false, setCategory},
      {"s",
       "",
       "read settings",
       {},
       false,
       tellSettings,
       {"printer", "description", "cashier", "drawer on total", "VAT detail", "footer", "top logo", "cutter",
        "display"}},
      {"S",
       "",
       "settings",
       {whole("printer", 5), text("description", 8), text("cashier", 20), flag("department"), flag("drawer on total"),
        flag("no sale"), flag("VAT detail"), flag("footer"), whole("top logo", 5), whole("bottom logo", 5),
        flag("cutter"), flag("display")},
       false,
       setSettings},
      {"B", "", "VAT number", vatNumberFields(), false, setVatNumber},
      {"]",
       "",
       "server",
       {flag("active"), kUrl, wholeOrEmpty("port", 5), text("key", 200), empty(), empty(), empty(),
        text("QR URL", 200)},
       false,
       setServer},
      {",",
       "0",
       "read server",
       {selector()},
       false,
       tellServer,
       {"active", "URL", "port", "key", "", "", "", "QR URL"}},
      {",", "1", "end of server", {selector()}, false, endServerDialogue},
  };
  return kCommands;
}

}  // namespace mirvane::emulator
