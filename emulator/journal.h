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

/// Bytes that grow at the end and are read in parts.
class Tape {
 public:
  virtual ~Tape() = default;

  virtual void append(std::string_view bytes) = 0;
  virtual std::size_t size() const = 0;
  /// `count` bytes from `position`; fewer only at the end.
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

/// The electronic journal: everything printed since the last closure, which the till fetches as files, piece by piece.
/// It is in code page 1253, its lines end with CR LF, and it contains no "/", which would end a field of the reply.
class Journal {
 public:
  struct File {
    std::string name, bytes;
  };

  struct Options {
    /// The longest piece in bytes, at least 1.
    std::size_t pieceSize = 1000;
    /// The file of printed text is padded with lines to this many bytes.
    std::size_t padding = 0;
    /// Receives each file of a closing when it is ready; false if it cannot be stored.
    std::function<bool(const File&)> keep;
  };
  Options options;

  Journal();
  /// From now on the journal is kept on these tapes, which already hold its beginning. The default is in memory.
  void keepOn(std::unique_ptr<Tape> printed, std::unique_ptr<Tape> signatures);

  static void appendLine(std::string& bytes, TextView line);

  /// Records one printed line.
  void record(TextView line);
  void beginReceipt() { memory_.receiptStart = printed_->size(); }
  /// Adds a line of `particulars` and the signature of everything printed since `beginReceipt`.
  void signReceipt(TextView particulars);

  /// True once the preparation of a closing is finished, which takes a few calls.
  bool advancePreparation();
  /// Prepares the files for reading from the beginning: `name` with "_a.txt" has the printed text, with "_b.txt" the
  /// receipts' signatures, with "_s.txt" the summary.
  void prepare(const std::string& name, std::string summary);
  /// As `prepare`; the files then stay unchanged until `startAnew`. Returns false, with nothing prepared, if
  /// `options.keep` failed.
  bool prepareClosing(const std::string& name, std::string summary);
  void rewind();
  void startAnew();

  bool isPrepared() const { return !memory_.files.empty(); }
  bool isClosing() const { return memory_.isClosing; }
  /// A closing's journal was read to its end at least once.
  bool isTransferred() const { return memory_.isClosing && memory_.isTransferred; }
  /// Signature of a closing's printed text and receipts' signatures.
  const std::string& signature() const { return memory_.signature; }

  struct Step {
    enum class State : char { kFileBegins = '0', kPiece = '1', kFileEnds = '2', kJournalEnds = '3' } state;
    std::string piece, fileName;
  };
  /// The next step of reading; nothing directly after a preparation. After the end the last step is returned again and
  /// again.
  std::optional<Step> read();

  /// A prepared file: the beginning of a tape, padded with lines to `padding` bytes; or a text.
  struct Prepared {
    enum class Source { kPrinted, kSignatures, kText };
    std::string name;
    Source source = Source::kText;
    std::size_t size = 0, padding = 0;
    std::string text;
  };
  /// Everything apart from the tapes that survives a power cut. Reading restarts when the power returns.
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
  /// Whether the tapes hold everything that `memory` refers to.
  bool holds(const Memory& memory) const;

 private:
  const Tape& tapeOf(const Prepared& file) const;
  std::size_t sizeOf(const Prepared& file) const;
  /// At most `count` bytes of the file from `position`.
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
