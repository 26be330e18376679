#include <algorithm>

#include "driver/fiscal_varlen_module2.h"
#include "state/message_catalogue.h"

// The register checks ranges itself and answers with a code.
namespace mirvane {
namespace {

constexpr std::size_t kGroupName = 35;
constexpr std::size_t kPrinterName = 8;
constexpr std::size_t kCashierName = 20;

// Print size of the confirmation line, and the paper fed after it so that the line can be torn off.
constexpr std::int16_t kVatNumberSize = 2;
constexpr std::int16_t kVatNumberFeed = 8;

// The register stores "/" in addresses as "~", because "/" ends a field.
Text stored(Text url) {
  std::replace(url.begin(), url.end(), u'/', u'~');
  return url;
}

// The register's answer about the server: active, data URL, port, key, three empty fields and QR URL. If a register
// returns the URLs with "/" inside, they occupy several fields: the data URL then ends with the first field that ends
// in ".php" and is followed by a port. If there is none, it is one field.
struct ServerReply {
  static constexpr std::size_t kUrl = 1;

  explicit ServerReply(const Reply& fields) : reply(fields) {
    const auto isNumber = [](TextView field) {
      return !field.empty() && field.find_first_not_of(u"0123456789") == TextView::npos;
    };
    for (std::size_t i = kUrl; i + 1 < reply.count(); ++i) {
      if (!reply.text(i).ends_with(u".php") || !isNumber(reply.text(i + 1))) continue;
      port = i + 1;
      break;
    }
    if (reply.countAll() < port + 3) throw AutomationError(AutomationCode::badIndex);
  }

  Text urls() const { return joined(kUrl, port) + u"|" + joined(port + 5, reply.count()); }

  const Reply& reply;
  std::size_t port = kUrl + 1;

 private:
  Text joined(std::size_t begin, std::size_t end) const {
    Text url;
    for (std::size_t i = begin; i < end; ++i) url += (i == begin ? u"" : u"/") + reply.text(i);
    std::replace(url.begin(), url.end(), u'~', u'/');
    return url;
  }
};

constexpr TextView kEndServerDialogue = u",/1/";

// The register's commands for these are not known. Nothing is sent, and they are refused as the register refuses
// unknown commands.
constexpr auto refused = [](Driver& /*driver*/, const auto&... arguments) {
  constexpr auto kUnknown = static_cast<std::int16_t>(DeviceCode::kUnknownRequest);
  const auto refuse = [](const auto& argument) {
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(argument)>, Outcome>) {
      Session::fail({kUnknown, deviceErrorText(kUnknown)}, argument);
    }
  };
  (refuse(arguments), ...);
};

void readServer(Driver& driver, std::uint8_t& active, Text& urls, Text& port, Text& key, Outcome outcome, Text&) {
  const Reply reply = driver.send(u",/0/", outcome);
  if (!reply.succeeded()) return;
  driver.session.sendSilently(kEndServerDialogue);  // first, because a reply that is too short would leave it open
  const ServerReply server(reply);
  active = convertTo<std::uint8_t>(Value(reply.number(0)));
  urls = server.urls();
  port = reply.text(server.port);
  key = reply.text(server.port + 1);
}

void writeServer(Driver& driver, std::uint8_t active, const Text& urls, const Text& port, const Text& key,
                 Outcome outcome, Text&) {
  const std::size_t bar = std::min(urls.find(u'|'), urls.size());
  driver.send(Command(u"]/")
                  .integer(active)
                  .verbatim(stored(urls.substr(0, bar)))
                  .text(port)
                  .verbatim(key)
                  .empty()
                  .empty()
                  .empty()
                  .verbatim(stored(urls.substr(std::min(bar + 1, urls.size())))),
              outcome);
  driver.session.sendSilently(kEndServerDialogue);
}

template <std::size_t N>
auto printedLinesWrite(TextView code) {
  return [code](Driver& driver, PrintedLines<N, false> printed, Outcome outcome) {
    Command command(code);
    for (const auto& line : printed.lines) command.integer(line.size).text(line.text);
    driver.send(command, outcome);
  };
}

void writeVatRates(Driver& driver, VatRates<false> rates, Outcome outcome) {
  const std::array<double, 5> wanted = {rates.VatA, rates.VatB, rates.VatC, rates.VatD, rates.VatE};
  const Reply reply = driver.send(u"e/", outcome);
  if (!reply.succeeded()) return;
  bool isNew = false;
  for (std::size_t i = 0; i < wanted.size(); ++i) isNew = reply.number(i) != wanted[i] || isNew;
  if (!isNew) {
    outcome.Exresult = langMessage(message::kVatUnchanged);
    return;
  }
  Command command(u"b/");
  for (const double rate : wanted) command.amount(rate);
  driver.send(command, outcome);
}

}  // namespace

void addConfiguration(Rows& rows) {
  using namespace contract;
  rows.implement<setHeader>(printedLinesWrite<5>(u"H/"))
      .implement<setFooter>(printedLinesWrite<3>(u"Y/"))
      // The register takes the last line up to the command's end: only this command has no "/" there.
      .implement<setTempFooter>([](Driver& driver, Text& line1, Text& line2, Text& line3, Outcome outcome) {
        driver.send(Command(u"m/").text(line1).text(line2).unclosed(line3), outcome);
      })
      .implement<setVatCategories>(writeVatRates)
      .implement<setDepartment>([](Driver& driver, Integer& id, Text& description, Integer& category, Outcome outcome) {
        driver.send(Command(u"d/").integer(id).text(description, kGroupName).integer(category), outcome);
      })
      .implement<setCategory>([](Driver& driver, Integer& id, Text& description, Outcome outcome) {
        driver.send(Command(u"K/").integer(id).text(description, kGroupName), outcome);
      })
      .implement<settingsWrite>([](Driver& driver, clsParam& c, Outcome outcome) {
        driver.send(Command(u"S/")
                        .integer(c.printerId)
                        .text(c.printerDescription, kPrinterName)
                        .text(c.cashierDesc, kCashierName)
                        .integer(c.printRECPluDepartment)
                        .integer(c.drawerOpenonTotal)
                        .integer(c.printREConNoSale)
                        .integer(c.printRECVATDetail)
                        .integer(c.printRECFooterComments)
                        .integer(c.printRECTopLogo)
                        .integer(c.printRECBottomLogo)
                        .integer(c.printerUSeCutter)
                        .integer(c.useLCDdisplay()),
                    outcome);
      })
      // Printed whatever the register answers; the outcome is that of the last paper feed.
      .implement<setVATNumber>([](Driver& driver, Text& sVat, Outcome outcome, Text&) {
        driver.send(u"B/////////" + cleanText(sVat) + u"//////////", outcome);
        printComment(driver, u"VAT = " + sVat, kVatNumberSize, outcome);
        driver.send(Command(u"F/").integer(kVatNumberFeed), outcome);
      })
      .implement<setServer>(writeServer)
      .implement<getServer>(readServer)
      .implement<setTaxCardNumber>(refused)
      .implement<sentBitmapData>(refused)
      .implement<setReceiptBitmap>(refused)
      .implement<setReceiptBitmapSize>(refused);
}

}  // namespace mirvane
