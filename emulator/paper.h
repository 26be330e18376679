#pragma once

#include <functional>
#include <string_view>

#include "text/code_page.h"

namespace mirvane::emulator {

/// The printer's paper: a roll of text lines, each handed to a sink as soon as it is printed.
class Paper {
 public:
  static constexpr std::size_t kColumns = 48;

  /// Takes one line of at most kColumns characters, without blanks and a line end behind it.
  using Sink = std::function<void(TextView line)>;

  explicit Paper(Sink sink) : sink_(std::move(sink)) {}

  /// Prints `text`, on several lines when it is too long for one.
  void line(TextView text);
  /// Prints `text` in a print size, 1 or 2 of normal and 3 or 4 of double width; centred when asked for.
  void sized(TextView text, int size, bool centred);
  void centred(TextView text) { sized(text, 1, true); }
  /// Prints `left` at the left and `right` at the right margin of one line; `left` is cut where they would meet.
  void pair(TextView left, TextView right);
  void rule();
  void feed(int lines);
  void cut(bool full);

 private:
  Sink sink_;
};

}  // namespace mirvane::emulator
