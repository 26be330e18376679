#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "text/text.h"

namespace mirvane::emulator {

/// Bytes that grow at their end, of which parts are read.
class Tape {
 public:
  virtual ~Tape() = default;

  virtual void append(std::string_view bytes) = 0;
  virtual std::size_t size() const = 0;
  /// `count` bytes from `position` on; fewer only at the end.
  virtual std::string read(std::size_t position, std::size_t count) const = 0;
  virtual void clear() = 0;
};

/// Forty hexadecimal digits that depend on every byte added.
class Signature {
 public:
  void add(std::string_view bytes);
  std::string digits() const;

 private:
  std::array<std::uint32_t, 5> lanes_{0x4D495256, 0x414E4520, 0x4A4F5552, 0x4E414C20, 0x32303235};
  std::size_t size_ = 0;
};

/// The electronic journal: what was printed since the last closure, for the till to fetch as files, piece by piece.
/// It holds code page 1253, its lines end with CR LF, and there is no "/" in it: that would end a field of the reply.
class Journal {
 public:
  struct File {
    std::string name, bytes;
  };

  struct Options {
    /// The longest piece in bytes, at least 1.
    std::size_t pieceSize = 1000;
    /// The file of printed text is filled up with lines to this many bytes.
    std::size_t padding = 0;
    /// Takes each file of a closing when it is ready. False when it cannot be kept.
    std::function<bool(const File&)> keep;
  };
  Options options;

  Journal();
  /// What is recorded from now on goes to these tapes, which hold what belongs before it. They are in memory otherwise.
  void keepOn(std::unique_ptr<Tape> printed, std::unique_ptr<Tape> signatures);

  static void appendLine(std::string& bytes, TextView line);

  /// Takes one printed line.
  void record(TextView line);
  void beginReceipt() { memory_.receiptStart = printed_->size(); }
  /// Adds a line of `particulars` and the signature of what was printed since `beginReceipt`.
  void signReceipt(TextView particulars);

  /// True once the preparation of a closing is over: it takes a few calls.
  bool advancePreparation();
  /// Makes the files ready for reading, from their beginning: `name` with "_a.txt" the printed text, "_b.txt" the
  /// receipts' signatures, "_s.txt" the summary.
  void prepare(const std::string& name, std::string summary);
  /// As `prepare`; the files then stay as they are until `startAnew`. False, and nothing prepared, when `options.keep`
  /// failed.
  bool prepareClosing(const std::string& name, std::string summary);
  void rewind();
  void startAnew();

  bool isPrepared() const { return !memory_.files.empty(); }
  bool isClosing() const { return memory_.isClosing; }
  /// A closing's journal was read to its end at least once.
  bool isTransferred() const { return memory_.isClosing && memory_.isTransferred; }
  /// Of the printed text and the receipts' signatures of a closing.
  const std::string& signature() const { return memory_.signature; }

  struct Step {
    enum class State : char { kFileBegins = '0', kPiece = '1', kFileEnds = '2', kJournalEnds = '3' } state;
    std::string piece, fileName;
  };
  /// The next step of reading what is prepared, nothing just after it was. The last file ends with the journal, which
  /// is then told again and again.
  std::optional<Step> read();

  /// A file that is ready: the beginning of a tape, filled up with lines to `padding` bytes; or a text.
  struct Prepared {
    enum class Source { kPrinted, kSignatures, kText };
    std::string name;
    Source source = Source::kText;
    std::size_t size = 0, padding = 0;
    std::string text;
  };
  /// All that outlives a power cut beside the tapes. A reading begins anew when the power is back.
  struct Memory {
    std::size_t receiptStart = 0;
    int preparationCalls = 0;
    std::vector<Prepared> files;
    std::string signature;
    bool isClosing = false;
    bool isTransferred = false;
  };
  const Memory& memory() const { return memory_; }
  void recall(Memory memory);
  /// Whether the tapes hold all that `memory` tells of.
  bool holds(const Memory& memory) const;

 private:
  const Tape& tapeOf(const Prepared& file) const;
  std::size_t sizeOf(const Prepared& file) const;
  /// At most `count` bytes of the file, from `position` on.
  std::string read(const Prepared& file, std::size_t position, std::size_t count) const;
  std::vector<Prepared> filesNow(const std::string& name, std::string summary) const;

  std::unique_ptr<Tape> printed_, signatures_;
  Memory memory_;

  bool isRewound_ = false;
  std::size_t file_ = 0;
  bool isInFile_ = false;
  std::size_t position_ = 0;
};

}  // namespace mirvane::emulator
