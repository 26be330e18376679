#include "link/frame.h"

#include "protocol/reply.h"
#include "protocol/wire.h"
#include "text/code_page.h"

namespace mirvane {
namespace {

constexpr bool isLinkControl(char c) {
  return c == wire::kStx || c == wire::kEtx || c == wire::kEnq || c == wire::kAck || c == wire::kNak || c == wire::kCan;
}

std::string checksum(const std::string& command) {
  unsigned sum = 0;
  for (const char c : command) sum = (sum + static_cast<std::uint8_t>(c)) % 256;
  sum %= 100;
  return {static_cast<char>('0' + sum / 10), static_cast<char>('0' + sum % 10)};
}

}  // namespace

Frame::Frame(TextView command) {
  bool isReplaced = false;
  std::string text = toCodePage(command, &isReplaced);
  isFaithful = !isReplaced;
  for (char& c : text) {
    if (!isLinkControl(c)) continue;
    c = '?';
    isFaithful = false;
  }
  bytes = wire::kStx + text + checksum(text) + wire::kEtx;
}

TextView replyIn(TextView received) {
  for (std::size_t end = received.size(); end > 0;) {
    const std::size_t at = received.rfind(wire::kStx, end - 1);
    if (at == TextView::npos) break;
    if (hasStatus(received.substr(at + 1))) return received.substr(at);
    end = at;
  }
  return received;
}

bool isCut(TextView reply) { return reply.starts_with(wire::kStx) && !reply.ends_with(wire::kEtx); }

bool isWholeReply(const std::string& datagram) {
  return datagram.starts_with(wire::kStx) && datagram.ends_with(wire::kEtx) &&
         hasStatus(withoutControls(fromCodePage(datagram)));
}

Text withoutControls(TextView reply) {
  Text clean(reply);
  std::erase_if(clean,
                [](char16_t c) { return c == wire::kStx || c == wire::kEtx || c == wire::kNak || c == wire::kAck; });
  return clean;
}

}  // namespace mirvane
