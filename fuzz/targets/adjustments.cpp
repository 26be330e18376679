// Adjustments of receipts of any totals. An input: a byte of how (1 discount, 2 percent, 4 of the last item), a line
// with the value, and the fields of the device's reply about the totals.

#include <cmath>
#include <numeric>

#include "emulator/money.h"
#include "fuzz/machine.h"
#include "text/code_page.h"
#include "text/text.h"

namespace mirvane::fuzz {
namespace {

using emulator::Cents;

constexpr double kLargest = 1e12;

std::optional<Cents> centsIn(TextView field) { return emulator::parseFixed(toUtf8(field), 2); }

// The five totals and the receipt's, when the device tells them as it does, in cents, and they agree.
std::optional<std::array<Cents, 5>> totalsIn(const Reply& reply) {
  std::array<Cents, 5> totals{};
  if (reply.countAll() < 7) return std::nullopt;
  const auto whole = centsIn(reply.textAt(6));
  for (std::size_t i = 0; i < totals.size(); ++i) {
    const auto total = centsIn(reply.textAt(i));
    if (!total || *total < 0 || *total > 99'999'999) return std::nullopt;
    totals[i] = *total;
  }
  if (whole != std::accumulate(totals.begin(), totals.end(), Cents{0})) return std::nullopt;
  return totals;
}

void check(const std::string& command, bool isDiscount, double asked,
           const std::optional<std::array<Cents, 5>>& totals) {
  const std::vector<Text> fields = split(fromCodePage(command), u'/');
  require(fields.size() == 12 && fields[11].empty(), "ten fields");
  const auto amount = centsIn(fields[5]);
  require(amount && *amount >= 0, "an amount");
  Cents sum = 0;
  for (std::size_t i = 0; i < 5; ++i) {
    const auto share = centsIn(fields[6 + i]);
    require(share && *share >= 0, "a share");
    sum += *share;
    const Cents sold = totals ? std::accumulate(totals->begin(), totals->end(), Cents{0}) : 0;
    const bool isPossible = isDiscount && totals && *amount <= sold;
    require(!isPossible || *share <= (*totals)[i], "a discount takes no more of a category than it sold");
  }
  require(sum == *amount, "the shares add up to the adjustment");
  // Half a cent may be rounded either way, since the amount goes through the receipt's total and back.
  const bool isAmount = totals && asked >= 0 && asked < 1e6;
  require(!isAmount || std::abs(asked * 100 - static_cast<double>(*amount)) < 0.500001,
          "the amount that was asked for");
}

void run(Input input) {
  const unsigned how = input.byte();
  const bool isDiscount = (how & 1U) != 0;
  const bool isPercent = (how & 2U) != 0;
  bool onLastItem = (how & 4U) != 0;
  double value = parseNumber(fromUtf8(input.line())).value_or(0);
  const double asked = isPercent ? -1 : std::abs(value);
  Machine machine;
  const ObjectPtr till = machine.connected(false);
  std::optional<std::array<Cents, 5>> totals;
  machine.script(input, true, [&](const std::string& command, const Reply* reply) {
    if (command == "9/") totals = totalsIn(*reply);
    // On an empty receipt any amount goes to the register, which refuses it.
    const bool isAmount = isPercent || asked < kLargest;
    if (command.starts_with("4/") && !onLastItem && isAmount) check(command, isDiscount, asked, totals);
  });
  const auto adjustment = convertTo<ObjectPtr>(till->call("adjustment", onLastItem));
  const char* const members[] = {"amountMarkUp", "amountDiscount", "percentMarkUP", "percentDiscount"};
  std::int16_t result = 0;
  Text text;
  bool silent = true;
  passes([&] { adjustment->call(members[how & 3U], u"A", value, result, text, silent); });
}

}  // namespace
}  // namespace mirvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  mirvane::fuzz::run({data, size});
  return 0;
}
