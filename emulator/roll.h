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

/// One printed document: a receipt, a report, or whatever is printed between them.
struct Document {
  enum class Kind { kReceipt, kCashIn, kCashOut, kReport, kNote };
  enum class State { kOpen, kClosed, kCancelled };

  /// Counts from 1, across days.
  int id = 0;
  Kind kind = Kind::kNote;
  State state = State::kOpen;
  /// For a receipt: its number within the day.
  int number = 0;
  /// Number of the Z report that closes, or will close, its day.
  int closure = 0;
  platform::LocalTime time{};
  std::vector<PaperLine> lines;
  /// For a finished receipt: its content, and the rates at which it was sold.
  std::optional<Receipt> receipt;
  VatRates vatRates{};
};

/// The printed paper, document by document.
class Roll {
 public:
  /// Older documents are dropped.
  static constexpr std::size_t kMostDocuments = 5000;

  void begin(Document document);
  void end(Document::State state, std::optional<Receipt> receipt = {});
  /// A line outside of any document starts a note; feeds and cuts there belong to the document before.
  void print(const PaperLine& line);

  /// Drops all documents; ids continue.
  void clear();

  /// Oldest first, with consecutive ids.
  const std::deque<Document>& documents() const { return documents_; }
  /// The document with `id`; null if it was dropped or does not exist yet.
  const Document* find(int id) const;
  /// Id of the oldest one, or of the next if there is none.
  int firstId() const { return documents_.empty() ? lastId_ + 1 : documents_.front().id; }

 private:
  bool isOpen_ = false;
  int lastId_ = 0;
  std::deque<Document> documents_;
};

}  // namespace mirvane::emulator
