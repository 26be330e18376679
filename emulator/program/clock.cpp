#include "emulator/program/clock.h"

#include <cstdio>

#include "emulator/device.h"

namespace mirvane::emulator {

std::string isoTime(const platform::LocalTime& time) {
  char text[80];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", time.year, time.month, time.day, time.hour,
                time.minute, time.second);
  return text;
}

std::time_t StationClock::now() const {
  return stopped_ ? *stopped_ : static_cast<std::time_t>(std::time(nullptr) + offset);
}

platform::LocalTime StationClock::time() const {
  const std::time_t then = now();
  const std::tm* local = std::localtime(&then);
  if (!local) return systemTime();
  return {local->tm_year + 1900, local->tm_mon + 1, local->tm_mday, local->tm_hour, local->tm_min, local->tm_sec};
}

void StationClock::run(bool runs) {
  const std::time_t then = now();
  stopped_.reset();
  setOffset(then - std::time(nullptr));
  if (!runs) stopped_ = then;
}

void StationClock::setOffset(std::int64_t seconds) {
  offset = seconds;
  if (stopped_) stopped_ = static_cast<std::time_t>(std::time(nullptr) + seconds);
}

bool StationClock::set(const std::string& text) {
  platform::LocalTime time{};
  if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d", &time.year, &time.month, &time.day, &time.hour, &time.minute,
                  &time.second) != 6) {
    return false;
  }
  std::tm local{};
  local.tm_year = time.year - 1900;
  local.tm_mon = time.month - 1;
  local.tm_mday = time.day;
  local.tm_hour = time.hour;
  local.tm_min = time.minute;
  local.tm_sec = time.second;
  local.tm_isdst = -1;
  const std::time_t then = std::mktime(&local);
  // A day that does not exist would become another one.
  if (time.year < 1971 || then == -1 || local.tm_mday != time.day || isoTime(time) != text) return false;
  setOffset(then - std::time(nullptr));
  if (stopped_) stopped_ = then;
  return true;
}

}  // namespace mirvane::emulator
