#include "emulator/replay.h"

#include <algorithm>
#include <utility>

#include "protocol/wire.h"

namespace mirvane::emulator {
namespace {

using recorder::Event;
using recorder::EventKind;
using Step = Replay::Step;

constexpr std::uint32_t kLongest = 86'400'000;  // milliseconds
// A till on the network checks every half second for a reply that does not come at once. A reply sent halfway between
// two checks is found by the same check as then.
constexpr std::int64_t kBetweenLooks = 250;

const std::string kAck{wire::kAck};
constexpr char kBegins[] = {wire::kStx, wire::kEnq, wire::kCan, '\0'};

bool isTorn(std::string_view unit) { return unit.starts_with(wire::kStx) && !unit.ends_with(wire::kEtx); }

std::uint32_t span(std::int64_t milliseconds) {
  return static_cast<std::uint32_t>(std::clamp<std::int64_t>(milliseconds, 0, kLongest));
}

/// Whether bytes of the till are those of a record, in which "*" stands for each digit of a key.
bool isAsRecorded(std::string_view then, std::string_view now) {
  return std::equal(then.begin(), then.end(), now.begin(), now.end(), [](char recorded, char sent) {
    return sent == recorded || (recorded == '*' && recorder::isHexDigit(sent));
  });
}

/// As it stands in a record, without the time.
std::string shown(std::string_view bytes) {
  constexpr std::size_t kStamp = 31;
  const std::string line = recorder::formatted(
      {0, EventKind::kSent, static_cast<std::int32_t>(bytes.size()), recorder::KeyMask().masked(bytes)}, 0);
  return line.substr(kStamp, line.find('\r') - kStamp);
}

/// Makes steps of events.
class Script {
 public:
  void add(Event event, std::size_t line) {
    switch (event.kind) {
      case EventKind::kSent:
        return addSent(std::move(event), line);
      case EventKind::kReceived:
        return addReceived(event, line, isIdle() ? 0 : event.time - lastSent_ - (isNetwork_ ? kBetweenLooks : 0));
      case EventKind::kDropped:
        return addReceived(event, line, 0);
      case EventKind::kBroken:
        return addBroken(event, line);
      case EventKind::kOpen:
        return addOpen(event);
      case EventKind::kCall:
      case EventKind::kEnded:
        isInCall = event.kind == EventKind::kCall;
        return;
      default:
        return;
    }
  }

  std::vector<Step> steps;
  bool isInCall = false;

 private:
  // The exchange is over. What was found later was there before the till checked.
  bool isIdle() const { return lastUnit_ == kAck; }
  bool isAway() const { return !steps.empty() && steps.back().kind == Step::Kind::kAway; }

  void addSent(Event event, std::size_t line) {
    if (event.text != kAck) halveLastDelay();
    if (isAway() && steps.back().length == kLongest) addFound(event.time);
    lastSent_ = event.time;
    std::string bytes = std::move(event.text);
    const bool goesOn = !bytes.empty() && std::string_view(kBegins).find(bytes.front()) == std::string_view::npos;
    if (goesOn && !steps.empty() && steps.back().kind == Step::Kind::kSent && isTorn(steps.back().bytes)) {
      bytes.insert(0, steps.back().bytes);
      line = steps.back().line;
      steps.pop_back();
    }
    for (std::string_view rest = bytes; !rest.empty();) {
      const std::size_t whole = unitLength(rest);
      lastUnit_ = rest.substr(0, whole == 0 ? rest.size() : whole);
      steps.push_back({Step::Kind::kSent, line, lastUnit_});
      rest.remove_prefix(lastUnit_.size());
    }
  }

  // Skips what was not asked for, as at the beginning of a record that continues another one.
  void addReceived(const Event& event, std::size_t line, std::int64_t delay) {
    if (steps.empty() || isAway()) return;
    steps.push_back({Step::Kind::kReceived, line, event.text, span(delay)});
  }

  // An answer that the till did not accept as complete has the time at which it stopped waiting for more.
  void halveLastDelay() {
    if (!steps.empty() && steps.back().kind == Step::Kind::kReceived) steps.back().delay /= 2;
  }

  // The till notices only when it writes again. The line is away from what it sent last; where that ended an exchange,
  // the till was idle, and only what passed after it had noticed counts.
  void addBroken(const Event& event, std::size_t line) {
    if (isNetwork_ || steps.empty() || isAway()) return;
    halveLastDelay();
    const bool isAtOnce = steps.back().kind == Step::Kind::kSent;
    const std::uint32_t delay = isAtOnce ? 0 : (steps.back().delay + span(event.time - lastSent_)) / 2;
    awaySince_ = notFoundAt_ = isIdle() ? event.time : lastSent_ + delay;
    steps.push_back({Step::Kind::kAway, line, {}, isIdle() ? 0 : delay, kLongest});
  }

  // It came back between the last attempt that did not find it and the first that did.
  void addFound(std::int64_t time) { steps.back().length = span((notFoundAt_ + time) / 2 - awaySince_); }

  void addOpen(const Event& event) {
    if (event.number == 0) isNetwork_ = event.text.find(':') != std::string::npos;
    if (!isAway()) return;
    if (event.number == 0) {
      addFound(event.time);
    } else {
      notFoundAt_ = event.time;
    }
  }

  std::int64_t lastSent_ = 0, awaySince_ = 0, notFoundAt_ = 0;
  std::string lastUnit_;
  bool isNetwork_ = false;
};

// The commands that set and read the server.
bool holdsKey(std::string_view frame) {
  const std::string_view command = frame.substr(std::min<std::size_t>(frame.size(), 1));
  return command.starts_with("]/") || command.starts_with(",/");
}

}  // namespace

Replay::Replay(std::string_view record) {
  Script script;
  for (std::size_t line = 1; !record.empty() && cut_.empty(); ++line) {
    const std::size_t end = std::min(record.find('\n'), record.size());
    std::string_view text = record.substr(0, end);
    if (text.ends_with('\r')) text.remove_suffix(1);
    auto event = recorder::parsedEvent(text);
    if (line == 1 && !event) throw ReplayError("not a flight record");
    const std::string here = " line " + std::to_string(line);
    if (end == record.size()) {
      cut_ = "it is cut off in" + here;
    } else if (!event) {
      cut_ = "it is damaged in" + here;
    } else if (event->kind == EventKind::kLost) {
      cut_ = "it lacks events at" + here;
    } else {
      script.add(std::move(*event), line);
      lastLine_ = line;
    }
    record.remove_prefix(std::min(end + 1, record.size()));
  }
  if (cut_.empty() && script.isInCall) cut_ = "it ends within a call";
  steps_ = std::move(script.steps);
  if (steps_.empty()) throw ReplayError("the record contains nothing that a till sent");
}

void Replay::feed(std::string_view bytes, Outlet& outlet) {
  if (end_ == End::kAsRecorded) differ(secrets_.maskedSent(bytes, holdsKey(bytes)));
  // Bytes sent to a line that breaks are lost, then as now.
  if (end_ || outlet.hurry()) return;
  pending_ += bytes;
  while (!end_) {
    const std::string& expected = steps_[next_].bytes;
    const bool isTornAlike =
        isTorn(expected) && isAsRecorded(expected, std::string_view(pending_).substr(0, expected.size()));
    const std::size_t length = isTornAlike ? expected.size() : unitLength(pending_);
    if (length == 0) return;
    const std::string unit = pending_.substr(0, length);
    pending_.erase(0, length);
    take(unit, outlet);
  }
}

void Replay::take(const std::string& unit, Outlet& outlet) {
  const std::string masked = secrets_.maskedSent(unit, holdsKey(unit));
  if (!isAsRecorded(steps_[next_].bytes, masked)) return differ(masked);
  for (++next_; next_ < steps_.size() && steps_[next_].kind != Step::Kind::kSent; ++next_) {
    const Step& step = steps_[next_];
    lastDelay_ = step.delay;
    if (step.kind == Step::Kind::kReceived) {
      outlet.send(step.bytes, step.delay);
    } else {
      outlet.unplug(step.delay, step.length);
      pending_.clear();
    }
  }
  if (next_ < steps_.size()) return;
  const std::string lines = "as recorded, up to line " + std::to_string(lastLine_);
  if (cut_.empty()) return finish(End::kAsRecorded, lines + ", the end");
  finish(End::kCut, lines + ", where the record is incomplete: " + cut_);
}

void Replay::stop() {
  if (!end_) differ({});
}

void Replay::differ(std::string_view now) {
  const bool isBehind = next_ == steps_.size();
  const std::size_t line = isBehind ? lastLine_ : steps_[next_].line;
  finish(End::kDifferent, "different at line " + std::to_string(line) + " of the record\n  then  " +
                              (isBehind ? "the end" : shown(steps_[next_].bytes)) + "\n  now   " +
                              (now.empty() ? "the end" : shown(now)));
}

void Replay::finish(End end, std::string report) {
  end_ = end;
  report_ = std::move(report);
}

}  // namespace mirvane::emulator
