#include "link/link.h"

#include "link/frame.h"
#include "link/open_port.h"
#include "link/port.h"
#include "state/message_catalogue.h"
#include "state/module_state.h"
#include "text/code_page.h"
#include "text/text.h"

namespace mirvane {
namespace {

constexpr int kAskings = 3;

void tellOfUnknownCharacters() {
  showBox(u"INVALID CHARACTERS", platform::kInformationSystemModal, langMessage(message::kBoxTitle));
}

// What was received, parsed.
struct Received {
  explicit Received(const std::string& bytes) {
    const Text all = fromCodePage(bytes);
    const TextView framed = replyIn(all);
    isCut = mirvane::isCut(framed);
    clean = withoutControls(framed);
  }
  bool tellsNothing() const { return isCut || !hasStatus(clean); }

  Text clean;
  bool isCut = false;
};

Reply noAnswer() { return {link_result::kNoAnswer, link_result::kNoAnswerText}; }

}  // namespace

Reply silentDevice() { return {link_result::kNoAnswerToCommand, link_result::kNoAnswerToCommandText}; }

Answer exchange(TextView command, const Sending& sending, SilenceObserver& silence) {
  const Frame frame(trim(command));
  if (thePort().isOpen() && !frame.isFaithful && !sending.silent) tellOfUnknownCharacters();
  // Checked after the box, because program code runs while it is shown.
  if (!thePort().isOpen()) return {closedPort()};
  moduleState().call.holdsKey = sending.word.holdsKey;
  Answer answer;
  std::string& lastFrame = thePort().lastFrame;
  transport().drain();
  for (int asking = 1;; ++asking) {
    Exchange exchange = transport().exchange(frame.bytes, sending, silence);
    answer.attempts += exchange.attempts;
    lastFrame = exchange.failure == 0 ? frame.bytes : std::string();
    if (exchange.failure != 0) {
      answer.reply = {exchange.failure, Text(exchange.text)};
      return answer;
    }
    Received received(exchange.received);
    transport().trace(u" reply     ", received.clean);
    const bool tellsNothing = sending.word.asks && received.tellsNothing();
    if (!tellsNothing || asking == kAskings) transport().acknowledge();
    // A missing part of a journal piece is lost: the register has moved on.
    const bool lacksPiece = sending.word.movesJournal && received.isCut;
    if (!tellsNothing && !lacksPiece) {
      answer.reply = Reply(std::move(received.clean));
      transport().trace(u" exres     ", answer.reply.message);
      transport().drain();
      return answer;
    }
    transport().drain();
    if (asking < kAskings && !lacksPiece) continue;
    answer.reply = noAnswer();
    return answer;
  }
}

std::optional<Reply> askBriefly(TextView question, double seconds) {
  transport().drain();
  const Exchange exchange = transport().attempt(Frame(question).bytes, seconds);
  if (exchange.failure != 0) return std::nullopt;
  Received received(exchange.received);
  if (received.tellsNothing()) return std::nullopt;
  transport().acknowledge();
  transport().drain();
  return Reply(std::move(received.clean));
}

bool looksRepeated(TextView command) {
  return transport().losesSilently() && Frame(trim(command)).bytes == thePort().lastFrame;
}

}  // namespace mirvane
