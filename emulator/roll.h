#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include "emulator/paper.h"
#include "emulator/receipt.h"
#include "platform/ports.h"

namespace mirvane::emulator {

/// In hundredths of a percent: 2400 is 24 %.
using VatRates = std::array<std::int64_t, kVatCategories>;

/// What was printed as one: a receipt, a report, or what stands between such.
struct Document {
  enum class Kind { kReceipt, kCashIn, kCashOut, kReport, kNote };
  enum class State { kOpen, kClosed, kCancelled };

  /// Counts from 1, and on through the days.
  int id = 0;
  Kind kind = Kind::kNote;
  State state = State::kOpen;
  /// Of a receipt: its number within the day.
  int number = 0;
  /// Of the Z report that closes, or will close, its day.
  int closure = 0;
  platform::LocalTime time{};
  std::vector<PaperLine> lines;
  /// Of a receipt that has ended: what it held, and the rates that it was sold at.
  std::optional<Receipt> receipt;
  VatRates vatRates{};
};

/// The paper that has come out of the register, document by document.
class Roll {
 public:
  /// Older documents are forgotten.
  static constexpr std::size_t kMostDocuments = 5000;

  void begin(Document document);
  void end(Document::State state, std::optional<Receipt> receipt = {});
  /// A line outside of any document begins a note; feeds and cuts there belong to what is printed already.
  void print(const PaperLine& line);

  /// Forgets all documents; the ids go on.
  void clear();

  /// Oldest first; their ids follow one another.
  const std::deque<Document>& documents() const { return documents_; }
  /// The one with `id`; none when it is forgotten, or not there yet.
  const Document* find(int id) const;
  /// Of the oldest one, or of the first one to come.
  int firstId() const { return documents_.empty() ? lastId_ + 1 : documents_.front().id; }

 private:
  bool isOpen_ = false;
  int lastId_ = 0;
  std::deque<Document> documents_;
};

}  // namespace mirvane::emulator
