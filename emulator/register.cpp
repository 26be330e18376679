#include "emulator/register.h"

#include <chrono>

namespace mirvane::emulator {
namespace {

constexpr std::int64_t kMinutesOfADay = 1440;

/// Of the calendar, whatever the clock does in spring and in autumn.
std::int64_t minutesOf(const platform::LocalTime& time) {
  const std::chrono::year_month_day date{std::chrono::year(time.year),
                                         std::chrono::month(static_cast<unsigned>(time.month)),
                                         std::chrono::day(static_cast<unsigned>(time.day))};
  return std::chrono::sys_days(date).time_since_epoch().count() * kMinutesOfADay + std::int64_t{60} * time.hour +
         time.minute;
}

}  // namespace

Code Register::machineProblem() const {
  if (conditions.memoryFull) return Code::kFiscalMemoryFull;
  if (conditions.batteryFault) return Code::kBatteryFault;
  return conditions.clockLost ? Code::kClockLost : Code::kOk;
}

Code Register::beginProblem() const {
  const bool isTooLong = fiscal.isDayOpen && minutesOf(clock()) - fiscal.dayOpened >= kMinutesOfADay;
  return conditions.dailyZ && isTooLong ? Code::kZWanted : machineProblem();
}

void Register::openDay() {
  if (!fiscal.isDayOpen) fiscal.dayOpened = minutesOf(clock());
  fiscal.isDayOpen = true;
}

}  // namespace mirvane::emulator
