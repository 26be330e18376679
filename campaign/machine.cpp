#include "campaign/machine.h"

#include <cmath>

#include "protocol/wire.h"
#include "text/code_page.h"

namespace mirvane::campaign {
namespace {

constexpr double kGlance = 0.0005;
constexpr double kIdleRead = 0.01;

/// Notes a frame that goes out.
void note(Tap& tap, std::string_view bytes, double now) {
  if (!bytes.starts_with(wire::kStx)) return;
  tap.commands.emplace_back(bytes.substr(1, bytes.size() - 4));
  tap.answered.push_back(0);
  tap.lastFrame = now;
}

void noteAnswer(Tap& tap, std::string_view bytes) {
  const bool isReply = bytes.size() > 1 && !tap.answered.empty();
  if (isReply) tap.answered.back() += bytes.size();
}

void passMoment(const Tap& tap) {
  if (tap.moment) tap.moment();
}

}  // namespace

platform::Attempt<std::int32_t> TappedPort::open(TextView name) {
  auto opened = end_->open(name);
  if (opened && hasGone_ && stranger_ && end_ != stranger_.get()) {
    end_ = stranger_.get();
    opened = end_->open(name);
  }
  handle_ = opened.value_or(0);
  return opened;
}

platform::Attempt<std::size_t> TappedPort::write(std::int32_t handle, std::string_view bytes) {
  note(tap_, bytes, clock_.now);
  // Byte by byte where somebody looks on.
  std::size_t written = 0;
  for (std::size_t size = tap_.moment ? 1 : bytes.size(); written < bytes.size(); written += size) {
    passMoment(tap_);
    if (end_->write(handle, bytes.substr(written, size))) continue;
    hasGone_ = true;
    return std::nullopt;
  }
  passMoment(tap_);
  return written;
}

platform::Attempt<std::string> TappedPort::read(std::int32_t handle, std::size_t most) {
  if (waiting(handle) == std::size_t{0}) clock_.advance(kIdleRead);
  auto bytes = end_->read(handle, tap_.moment ? 1 : most);
  hasGone_ = hasGone_ || !bytes;
  if (!bytes || bytes->empty()) return bytes;
  passMoment(tap_);
  if (!tap_.answered.empty()) tap_.answered.back() += bytes->size();
  return bytes;
}

platform::Attempt<std::size_t> TappedPort::waiting(std::int32_t handle) {
  auto count = end_->waiting(handle);
  hasGone_ = hasGone_ || !count;
  return count;
}

platform::Granted TappedSockets::send(std::int32_t handle, std::string_view bytes) {
  note(tap_, bytes, clock_.now);
  passMoment(tap_);
  auto sent = LoopbackSockets::send(handle, bytes);
  passMoment(tap_);
  return sent;
}

platform::Attempt<std::string> TappedSockets::receive(std::int32_t handle, std::size_t most) {
  auto datagram = LoopbackSockets::receive(handle, most);
  passMoment(tap_);
  if (datagram) noteAnswer(tap_, *datagram);
  return datagram;
}

Machine::Machine(LineKind line, Stranger stranger)
    : device(
          {}, [this] { return clock.localTime(); }, [this] { return clock.now; }),
      line_(line),
      port_(device, faults, clock, tap, stranger),
      sockets_(
          device, faults, clock, tap,
          line == LineKind::kNetworkEnq ? emulator::Line::Acknowledges::kEnq : emulator::Line::Acknowledges::kFrame),
      platform{port_, sockets_, clock, screen, disk} {
  // What is on its way arrives in its time, and not when somebody looks.
  clock.glance = kGlance;
  clock.passes = [this] { sockets_.takeHeld(); };
  device.journal().options.pieceSize = 600;
  device.journal().options.keep = [this](const emulator::Journal::File& file) {
    journal_[file.name] = file.bytes + "\r\n";
    return true;
  };
}

void Machine::settleCard() {
  clock.now += device.cards().options.seconds;
  device.settleCard();
}

void Machine::settle() {
  constexpr double kLongestDelay = 60;
  clock.now += kLongestDelay;
  sockets_.takeHeld();
  device.settleCard();
}

std::vector<const emulator::Receipt*> Machine::receipts() {
  std::vector<const emulator::Receipt*> all;
  for (const emulator::Document& document : device.roll().documents()) {
    if (document.receipt) all.push_back(&*document.receipt);
  }
  if (device.fiscal().receipt) all.push_back(&*device.fiscal().receipt);
  return all;
}

int Machine::itemsBooked(emulator::ItemKind kind, TextView description) {
  int count = 0;
  for (const emulator::Receipt* receipt : receipts()) {
    for (const emulator::Item& item : receipt->items()) count += item.kind == kind && item.description == description;
  }
  return count;
}

int Machine::paymentsBooked(TextView description, double euros) {
  int count = 0;
  for (const emulator::Receipt* receipt : receipts()) {
    for (const emulator::Payment& payment : receipt->payments()) {
      count += payment.description == description && (euros == 0 || payment.amount == std::lround(euros * 100));
    }
  }
  return count;
}

int Machine::linesPrinted(TextView text) {
  int count = 0;
  for (const emulator::Document& document : device.roll().documents()) {
    for (const emulator::PaperLine& line : document.lines) count += line.text.find(text) != Text::npos;
  }
  return count;
}

int Machine::cardCharges() {
  int charges = 0;
  device.cards().visitMemory([&charges](std::string_view name, auto& member) {
    if constexpr (std::is_same_v<decltype(member), int&>) {
      if (name == "approvals") charges = member;
    }
  });
  return charges;
}

int Machine::journalsMissing() {
  const int closures = device.fiscal().closures;
  int missing = 0;
  for (int closure = 1; closure <= closures; ++closure) {
    bool isWhole = true;
    for (const char* suffix : {"_a.txt", "_b.txt", "_s.txt"}) {
      const std::string folder = "MVE25000017\\000" + std::to_string(closure) + "\\";
      const std::string name = "MVE25000017000" + std::to_string(closure) + suffix;
      for (const char* drive : {"c:\\bbox\\", "c:\\bboxBackUp\\"}) {
        const auto saved = disk.contents.find(fromUtf8(std::string(drive).append(folder).append(name)));
        const auto handed = journal_.find(name);
        isWhole =
            isWhole && handed != journal_.end() && saved != disk.contents.end() && saved->second == handed->second;
      }
    }
    missing += isWhole ? 0 : 1;
  }
  return missing;
}

}  // namespace mirvane::campaign
