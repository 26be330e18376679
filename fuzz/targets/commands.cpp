// Commands of any kind, carried out by the emulated register. An input: the commands, one a line; a line that begins
// with a blank lets half a second pass for each of its characters, one that begins with a tab goes to the line as it
// is. After each, the register's books must balance.

#include <algorithm>
#include <numeric>

#include "emulator/decoder.h"
#include "emulator/line.h"
#include "fuzz/machine.h"

namespace mirvane::fuzz {
namespace {

using emulator::Cents;
using emulator::FiscalState;
using emulator::Receipt;

class NoOutlet : public emulator::Outlet {
  void send(std::string_view, std::uint32_t) override {}
  void sendCopy(std::string_view, std::uint32_t) override {}
  void drop() override {}
  bool hurry() override { return false; }
  void unplug(std::uint32_t, std::uint32_t) override {}
};

// What the receipt charges, line by line.
void requireAddsUp(const Receipt& receipt) {
  Cents total = 0;
  for (const emulator::Item& item : receipt.items()) total += item.amount();
  for (const emulator::Adjustment& adjustment : receipt.adjustments()) total += adjustment.change();
  require(receipt.total() == total, "a receipt's total is that of its lines");
  require(std::ranges::min(receipt.vatSums()) >= 0, "no VAT category is below zero");
  Cents tendered = 0;
  for (const emulator::Payment& payment : receipt.payments()) tendered += payment.amount;
  require(receipt.paid() >= 0 && receipt.remaining() >= 0 && receipt.paid() + receipt.change() == tendered,
          "what was tendered is paid or change");
}

void requireAddsUp(const FiscalState& fiscal) {
  if (fiscal.receipt) requireAddsUp(*fiscal.receipt);
  const auto& payments = fiscal.day.payments;
  const Cents gross = emulator::sumOf(fiscal.day.gross);
  require(std::accumulate(payments.begin(), payments.end(), Cents{0}) == gross, "the day was paid for");
  const auto sold = [](const auto& groups) {
    Cents sum = 0;
    for (const auto& group : groups) sum += group.amount;
    return sum;
  };
  require(sold(fiscal.departments) == sold(fiscal.categories), "departments and categories sold the same");
  require(gross <= fiscal.limits.day, "the day's limit");
  require(!(fiscal.receipt && fiscal.cashDocument), "one document at a time");
}

/// What a refused command must leave as it is.
auto booked(emulator::Device& device, std::size_t lines) {
  const FiscalState& fiscal = device.fiscal();
  const auto amounts = [](const std::optional<Receipt>& receipt) {
    return receipt ? std::vector<Cents>{receipt->total(), receipt->paid(), std::ssize(receipt->items()),
                                        std::ssize(receipt->adjustments()), std::ssize(receipt->payments())}
                   : std::vector<Cents>{};
  };
  return std::tuple(lines, amounts(fiscal.receipt), fiscal.cashDocument.has_value(), fiscal.day.gross,
                    fiscal.day.payments, fiscal.closures, fiscal.lastReceiptNumber, fiscal.isDayOpen, fiscal.vatRates,
                    device.drawerOpenings());
}

void run(Input input) {
  double now = 0;
  std::size_t lines = 0;
  emulator::Device device([&lines](const emulator::PaperLine&) { ++lines; },
                          [] { return platform::LocalTime{2026, 11, 22, 12, 0, 0}; }, [&now] { return now; });
  emulator::Faults faults;
  NoOutlet outlet;
  emulator::Line line(device, faults, outlet, emulator::Line::Acknowledges::kFrame, [&now] { return now; });
  while (!input.atEnd()) {
    const std::string command = input.line();
    if (command.starts_with(' ')) now += 0.5 * static_cast<double>(command.size());
    if (command.starts_with('\t')) line.feed(command, {});
    if (command.starts_with('\t') || command.starts_with(' ')) continue;
    device.settleCard();
    const auto before = booked(device, lines);
    const std::string reply = device.execute(command);
    const emulator::DecodedReply decoded = emulator::decodeReply(reply, command);
    emulator::decodeCommand(command);
    require(decoded.isWhole && reply.ends_with('/'), "a whole reply");
    require(reply.find_first_of(std::string_view("\x02\x03\x05\x06\x15\x18", 6)) == std::string::npos,
            "no control bytes of the link in a reply");
    require(decoded.code == 0 || booked(device, lines) == before, "a refused command changes nothing");
    requireAddsUp(device.fiscal());
  }
}

}  // namespace
}  // namespace mirvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  mirvane::fuzz::run({data, size});
  return 0;
}
