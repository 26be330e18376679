#pragma once

#include <gtest/gtest.h>

#include <stdexcept>

#include "embedding/virtual_machine.h"
#include "text/code_page.h"
#include "text/text.h"

namespace mirvane::embedding {

inline void PrintTo(const Box& box, std::ostream* out) { *out << box.style << " " << box.title << ": " << box.prompt; }

}  // namespace mirvane::embedding

namespace mirvane::test {

using embedding::Box;

/// Shows 12:34:56; who waits longer than two hours hangs.
struct FakeClock : embedding::VirtualClock {
  FakeClock() : VirtualClock(12 * 3600 + 34 * 60 + 56) { limit = 7200; }
};

/// An operator whom only the tests of waits keep waiting.
struct FakeScreen : embedding::VirtualOperator {
  using VirtualOperator::VirtualOperator;

  void waitWhile(const platform::WaitText& text, const std::function<bool(platform::WaitView&)>& tick) override {
    if (!expectsWaits) throw std::logic_error("an unexpected wait");
    VirtualOperator::waitWhile(text, tick);
  }

  bool expectsWaits = false;
};

struct FakeFiles : embedding::VirtualDisk {
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
};

}  // namespace mirvane::test
