#include "driver/fiscal_varlen_module2.h"
#include "link/port.h"
#include "text/code_page.h"
#include "version.h"

namespace mirvane {
namespace {

// Longest logo line of this register, in characters.
constexpr std::int16_t kLogoLine = 48;

// Members of this driver only, called by name during a wait and by programs that hold the driver.
constexpr auto kSendData = method<bool(Text&)>("SendData", {"strData"});
constexpr auto kRecData = method<Text()>("recData");
constexpr auto kAvailData = method<bool()>("availData");
constexpr auto kClearBuffer = method<void()>("clearBuffer");
constexpr auto kSend =
    method<Text(Text&, Outcome, Text&, std::int16_t&)>("Send_", {"CmdString", "Pass", optional("timeOut")});
constexpr auto kSendCommand =
    method<void(Text&, Outcome, Text&, std::int16_t&)>("SendCommand_", {"CmdString", "Pass", optional("timeOut")});

// One exchange at the link's level: no wait, and no message box except the one about unknown characters.
Reply exchangeOnce(Driver& driver, TextView command, Outcome outcome, std::int16_t timeOut = 0) {
  Reply reply = driver.session.exchange(command, outcome, timeOut);
  outcome.set(reply);
  return reply;
}

template <class T>
void addProperty(Rows& rows, const char* name, T Session::*field) {
  rows.get<T>(name, [field](Driver& driver) { return driver.session.*field; });
  rows.put<T>(name, [field](Driver& driver, T value) { driver.session.*field = value; });
}

}  // namespace

void addConnection(Rows& rows) {
  using namespace contract;
  addProperty(rows, "lastResult", &Session::lastResult);
  addProperty(rows, "lastexResult", &Session::lastexResult);
  rows.implement<kSendData>([](Driver&, Text& text) { return transport().write(toCodePage(text)); })
      .implement<kRecData>([](Driver&) { return fromCodePage(transport().read()); })
      .implement<kAvailData>([](Driver&) { return transport().hasDatagram(); })
      .implement<kClearBuffer>([](Driver&) { transport().drain(); })
      .implement<lastReply>([](Driver& driver) { return driver.session.lastReply(); })
      .implement<kSend>([](Driver& driver, Text& command, Outcome outcome, Text&, Integer& timeOut) {
        return exchangeOnce(driver, command, outcome, timeOut).raw();
      })
      .implement<kSendCommand>([](Driver& driver, Text& command, Outcome outcome, Text&, Integer& timeOut) {
        driver.session.send(command, outcome, timeOut);
      })
      .implement<GetVersionInfo>([](Driver& driver, Outcome outcome, Text&) {
        const Reply reply = exchangeOnce(driver, u"v/", outcome);
        if (!reply.succeeded()) return;
        // A missing version counts as a blank one.
        const auto part = [&reply](std::size_t i) { return i < reply.countAll() ? reply.textAt(i) : Text(); };
        outcome.Exresult =
            part(0) + u"\r\n" + part(1) + u"[" + part(2) + u"]\r\n" + fromUtf8(MIRVANE_VERSION "\r\n" MIRVANE_PRODUCT);
      })
      .implement<Connect_>([](Driver&, const Text& PORT, Outcome outcome) { outcome.set(openPort(PORT)); })
      .implement<DisConnect_>([](Driver&, Text&, Outcome outcome) { outcome.Result = closePort(); })
      .implement<logoLineDescLength>([](Driver&) { return kLogoLine; });
}

}  // namespace mirvane
