#include "link/link.h"

#include <algorithm>
#include <array>

#include "link/port.h"
#include "protocol/wire.h"
#include "state/message_catalogue.h"
#include "state/module_state.h"
#include "text/text.h"

namespace mirvane {
namespace {

constexpr int kQuestionAttempts = 3;

constexpr bool isLinkControl(char c) {
  return c == wire::kStx || c == wire::kEtx || c == wire::kEnq || c == wire::kAck || c == wire::kNak || c == wire::kCan;
}

// The command's bytes. A character that the device has no code for becomes "?", and so does a control byte of the link,
// which would end the frame in its middle.
std::string commandBytes(TextView command, bool& replaced) {
  std::string bytes = toCodePage(command, &replaced);
  for (char& c : bytes) {
    if (!isLinkControl(c)) continue;
    c = '?';
    replaced = true;
  }
  return bytes;
}

std::string frameOf(const std::string& command) {
  unsigned sum = 0;
  for (const char c : command) sum = (sum + static_cast<std::uint8_t>(c)) % 256;
  const unsigned checksum = sum % 100;
  return wire::kStx + command + static_cast<char>('0' + checksum / 10) + static_cast<char>('0' + checksum % 10) +
         wire::kEtx;
}

// Whether a command only asks, so that it may be asked again. Whatever moves something on, as reading the journal does,
// does not.
bool onlyAsks(TextView command) {
  constexpr std::array<TextView, 11> kWhole = {u"?/", u"v/", u"9/", u"0/", u"a/",  u"t/",
                                               u"h/", u"{/", u"e/", u"s/", u",/0/"};
  constexpr std::array<TextView, 4> kBegin = {u"5/99/", u"D/", u"k/", u"E/0/"};
  return std::find(kWhole.begin(), kWhole.end(), command) != kWhole.end() ||
         std::any_of(kBegin.begin(), kBegin.end(), [&](TextView begin) { return command.starts_with(begin); });
}

// Whether a command prepares the journal or reads its next piece. A cut number would put it into the
// wrong folder.
bool movesJournal(TextView command) {
  return command == u"Q/" || command == u"A/" || command == u"#/" || command == u")/";
}

// A reply begins at the last STX with a result and status bytes behind it: what stands before is the rest of an attempt
// that was cut off, or noise. With no such STX it is all that came.
TextView replyIn(TextView received) {
  for (std::size_t end = received.size(); end > 0;) {
    const std::size_t at = received.rfind(wire::kStx, end - 1);
    if (at == TextView::npos) break;
    if (hasStatus(received.substr(at + 1))) return received.substr(at);
    end = at;
  }
  return received;
}

// A frame that began and did not end, which a network lets through.
bool isCut(TextView reply) { return reply.starts_with(wire::kStx) && !reply.ends_with(wire::kEtx); }

Text withoutControls(TextView reply) {
  Text clean(reply);
  std::erase_if(clean,
                [](char16_t c) { return c == wire::kStx || c == wire::kEtx || c == wire::kNak || c == wire::kAck; });
  return clean;
}

bool isOpen() { return moduleState().portHandle > 0; }

void tellOfUnknownCharacters() {
  showBox(u"INVALID CHARACTERS", platform::kInformationSystemModal, langMessage(message::kBoxTitle));
}

}  // namespace

Reply silentDevice() { return {link_result::kNoAnswerToCommand, link_result::kNoAnswerToCommandText}; }

Reply exchange(TextView command, const Sending& sending, SilenceObserver& silence) {
  const Text sent(trim(command));
  bool replaced = false;
  const std::string frame = frameOf(commandBytes(sent, replaced));
  if (isOpen() && replaced && !sending.silent) tellOfUnknownCharacters();
  // Looked at behind the box: the program may have run on while it was open.
  if (!isOpen()) return {link_result::kNotOpen, langMessage(message::kPortNotOpen)};
  transport().drain();
  for (int attempt = 1; attempt <= kQuestionAttempts; ++attempt) {
    const Exchange result = transport().exchange(frame, sending.timeOut, silence);
    if (result.failure != 0) return {result.failure, result.text};
    const Text received = fromCodePage(result.received);
    const TextView framed = replyIn(received);
    Text clean = withoutControls(framed);
    transport().trace(u" reply     ", clean);
    // What a piece of the journal lacks is lost: the device has moved on.
    const bool lacksPiece = isCut(framed) && movesJournal(sent);
    const bool lacksAnswer = (isCut(framed) || !hasStatus(clean)) && onlyAsks(sent);
    if (!lacksPiece && !lacksAnswer) {
      Reply reply(std::move(clean));
      transport().trace(u" exres     ", reply.message);
      transport().drain();
      return reply;
    }
    transport().drain();
    if (lacksPiece) break;
  }
  return {link_result::kNoAnswer, link_result::kNoAnswerText};
}

}  // namespace mirvane
