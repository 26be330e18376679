#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/ports.h"

namespace mirvane::test {

/// Time that passes only when somebody waits.
class FakeClock : public platform::Clock {
 public:
  double secondsSinceMidnight() override { return std::fmod(startOfDay + now, 86400.0); }
  double elapsed() override { return now; }
  platform::LocalTime localTime() override {
    const int seconds = static_cast<int>(secondsSinceMidnight());
    return {2024, 3, 25, seconds / 3600, seconds / 60 % 60, seconds % 60};
  }
  void sleep(std::uint32_t milliseconds) override { advance(milliseconds / 1000.0); }
  void advance(double seconds) {
    now += seconds;
    if (now > 7200) throw std::logic_error("still waiting after two hours");
  }

  double startOfDay = 12 * 3600 + 34 * 60 + 56;
  double now = 0;
};

struct Box {
  std::string prompt;
  std::uint32_t style;
  std::string title;
  bool operator==(const Box&) const = default;
};
inline void PrintTo(const Box& box, std::ostream* out) { *out << box.style << " " << box.title << ": " << box.prompt; }

/// An operator who closes every box and waits as the test says.
class FakeScreen : public platform::Screen {
 public:
  void messageBox(TextView prompt, std::uint32_t style, TextView title) override {
    boxes.push_back({toUtf8(prompt), style, toUtf8(title)});
  }
  platform::DeviceOutcome waitForDevice(std::int16_t code, TextView message) override {
    waits.push_back(std::to_string(code) + " " + toUtf8(message));
    if (outcomes.empty()) throw std::logic_error("an unexpected wait");
    platform::DeviceOutcome outcome = outcomes.front();
    outcomes.pop_front();
    return outcome;
  }
  void traceLine(TextView line) override { trace.push_back(toUtf8(line)); }

  std::vector<Box> boxes;
  std::vector<std::string> waits;
  std::deque<platform::DeviceOutcome> outcomes;
  std::vector<std::string> trace;
};

class FakeFiles : public platform::Files {
 public:
  Text componentFolder() override { return u"C:\\till"; }
  std::optional<std::string> read(TextView path) override {
    const auto file = contents.find(Text(path));
    return file == contents.end() ? std::nullopt : std::optional(file->second);
  }
  /// A catalogue of so many languages; `fields` (UTF-8) stand one after the other, message by message.
  void setCatalogue(std::uint8_t languages, const std::map<std::size_t, std::string>& fields, std::size_t messages) {
    std::string file(1, static_cast<char>(languages));
    for (std::size_t i = 0; i < messages * languages; ++i) {
      const auto field = fields.find(i);
      std::string bytes = field == fields.end() ? "" : toCodePage(fromUtf8(field->second));
      bytes.resize(100, ' ');
      file += bytes;
      if ((i + 1) % languages == 0) file += "\r\n";
    }
    contents[kCatalogue] = file;
  }

  static constexpr const char16_t* kCatalogue = u"C:\\till\\Lang.dat";
  std::map<Text, std::string> contents;
};

}  // namespace mirvane::test
