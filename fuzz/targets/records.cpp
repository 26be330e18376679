// Flight records: events become lines and are read back, and lines of any kind, an attacker's too, are read. An input:
// a byte of how (the low four bits the event's kind, 16 hides a server's key, 32 a key in pieces), eight bytes of time
// and zone, eight of the number, and the event's text, a line, the server's address, or what stands around the key.

#include "fuzz/machine.h"
#include "recorder/secrets.h"
#include "text/code_page.h"

namespace mirvane::fuzz {
namespace {

using namespace recorder;

constexpr std::int64_t kYear9999 = 253'370'764'800'000;

void checkEvent(const Event& event, int zone) {
  const std::string line = formatted(event, zone);
  require(line.ends_with("\r\n"), "a line end");
  const std::string_view shown(line.data(), line.size() - 2);
  for (const char c : shown) require(c < 0 || (c >= ' ' && c != 0x7F), "no control characters in a line");
  require(!isOfLine(event.kind) || toUtf8(fromUtf8(shown)) == shown, "UTF-8");
  require(parsedEvent(shown) == event, "the event is read back");
  for (std::size_t cut = 0; cut < shown.size(); cut += 1 + shown.size() / 8) parsedEvent(shown.substr(0, cut));
}

void checkLine(const std::string& line) {
  const auto event = parsedEvent(line);
  if (!event) return;
  require(static_cast<unsigned>(event->kind) <= static_cast<unsigned>(EventKind::kLost), "a kind");
  if (event->time >= 0 && event->time < kYear9999) checkEvent(*event, 0);
}

// Whatever address and port a server has, its key is not told.
void checkSecrets(const std::string& server) {
  constexpr std::string_view kKey = "GEHEIM";
  if (server.find(kKey) != std::string::npos || server.find_first_of("\x02\x03\x06\x15") != std::string::npos) return;
  const std::string end = "/" + std::string(kKey) + "////q/";
  Secrets secrets;
  const std::string set = secrets.maskedSent("\x02]/1/" + server + "/8080" + end + "12\x03", true);
  require(set.find(kKey) == std::string::npos, "the key of a setServer");
  secrets.maskedSent("\x02,/0/12\x03", true);
  const std::string told = secrets.masked(EventKind::kReceived,
                                          "\x02"
                                          "00/00/00/1/" +
                                              server + "/8080" + end + "\x03");
  require(told.find(kKey) == std::string::npos, "the key of a getServer");
  secrets.masked(EventKind::kReceived, server);
}

// However a key comes in pieces, and whatever stood before it, no eight digits of it are told.
void checkKey(const std::string& before, std::size_t first, std::size_t size) {
  const std::string key = "0123456789abcdefABCDEF98765432100f1e2d3c4b5a69788796a5b4c3d2e1f0";
  const auto isToldIn = [&key](const std::string& text) {
    constexpr std::size_t kPart = 8;
    for (std::size_t i = 0; i + kPart <= key.size(); ++i) {
      if (text.find(key.substr(i, kPart)) != std::string::npos) return true;
    }
    return false;
  };
  if (isToldIn(before)) return;
  Secrets secrets;
  secrets.masked(EventKind::kReceived, before);
  secrets.masked(EventKind::kSent, before);
  std::string shown = secrets.masked(EventKind::kReceived, before + key.substr(0, first));
  for (std::size_t at = first; at < key.size(); at += size) {
    shown += secrets.masked(at % 2 == 0 ? EventKind::kDropped : EventKind::kReceived, key.substr(at, size));
  }
  require(!isToldIn(shown), "the key in pieces");
}

void run(Input input) {
  const unsigned how = input.byte();
  const std::uint64_t moment = input.number();
  const auto number = static_cast<std::int32_t>(input.number());
  const std::string text = input.rest();
  const auto kind = static_cast<EventKind>((how & 15U) % (static_cast<unsigned>(EventKind::kLost) + 1));
  const int zone = static_cast<int>(moment >> 48U) % 1440 - 720;
  checkEvent({static_cast<std::int64_t>(moment % kYear9999), kind, number, text}, zone);
  checkLine(text);
  if ((how & 16U) != 0) checkSecrets(text);
  if ((how & 32U) != 0) checkKey(text, moment % 65, 1 + (moment >> 8U) % 64);
}

}  // namespace
}  // namespace mirvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  mirvane::fuzz::run({data, size});
  return 0;
}
