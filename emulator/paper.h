#pragma once

#include <functional>
#include <string_view>

#include "text/text.h"

namespace mirvane::emulator {

/// One line on the paper.
struct PaperLine {
  /// At most 48 characters, without trailing blanks.
  Text text;
  /// 1 normal, 2 bold, 3 double width, 4 both. In double width `text` has a blank after each character.
  int size = 1;
  /// A line across the paper where it is cut.
  bool isCut = false;

  operator TextView() const { return text; }
};

/// The printer's paper: a roll of text lines, each passed to a sink as soon as it is printed.
class Paper {
 public:
  static constexpr std::size_t kColumns = 48;

  using Sink = std::function<void(const PaperLine& line)>;

  explicit Paper(Sink sink) : sink_(std::move(sink)) {}

  /// Prints `text`, on several lines if it is too long for one. `size` as in PaperLine, but the text is not spread.
  void line(TextView text, int size = 1);
  /// Prints `text` in a print size, where 0 means 1; centred if requested.
  void sized(TextView text, int size, bool centred);
  void centred(TextView text) { sized(text, 1, true); }
  /// Prints `left` at the left and `right` at the right margin of one line; `left` is cut off where they would meet.
  void pair(TextView left, TextView right);
  void rule();
  void feed(int lines);
  void cut(bool full);

 private:
  Sink sink_;
};

}  // namespace mirvane::emulator
