#pragma once

#include <functional>
#include <string_view>

#include "text/text.h"

namespace mirvane::emulator {

/// One line on the paper.
struct PaperLine {
  /// At most 48 characters, without blanks behind them.
  Text text;
  /// 1 normal, 2 bold, 3 double width, 4 both. Double width stands in `text` as a blank behind each character.
  int size = 1;
  /// A line across the paper, where it is cut.
  bool isCut = false;

  operator TextView() const { return text; }
};

/// The printer's paper: a roll of text lines, each handed to a sink as soon as it is printed.
class Paper {
 public:
  static constexpr std::size_t kColumns = 48;

  using Sink = std::function<void(const PaperLine& line)>;

  explicit Paper(Sink sink) : sink_(std::move(sink)) {}

  /// Prints `text`, on several lines when it is too long for one. `size` as in PaperLine; nothing is spread.
  void line(TextView text, int size = 1);
  /// Prints `text` in a print size, 0 being 1; centred when asked for.
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
