#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "text/code_page.h"

namespace mirvane::emulator {

/// Forty hexadecimal digits that depend on every byte of `bytes`.
std::string signatureOf(std::string_view bytes);

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

  static void appendLine(std::string& bytes, TextView line);

  /// Takes one printed line.
  void record(TextView line) { appendLine(printed_, line); }
  void beginReceipt() { receiptStart_ = printed_.size(); }
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

  bool isPrepared() const { return !files_.empty(); }
  bool isClosing() const { return isClosing_; }
  /// A closing's journal was read to its end at least once.
  bool isTransferred() const { return isClosing_ && isTransferred_; }
  /// Of the printed text and the receipts' signatures of a closing.
  const std::string& signature() const { return signature_; }

  struct Step {
    enum class State : char { kFileBegins = '0', kPiece = '1', kFileEnds = '2', kJournalEnds = '3' } state;
    std::string_view piece, fileName;
  };
  /// The next step of reading what is prepared, nothing just after it was. The last file ends with the journal, which
  /// is then told again and again.
  std::optional<Step> read();

  /// Hands all that outlives a power cut to `visit(name, member)`. A reading begins anew when the power is back.
  template <class Visitor>
  void visitMemory(Visitor&& visit) {
    visit("printed", printed_);
    visit("signatures", signatures_);
    visit("receiptStart", receiptStart_);
    visit("preparationCalls", preparationCalls_);
    visit("files", files_);
    visit("signature", signature_);
    visit("isClosing", isClosing_);
    visit("isTransferred", isTransferred_);
  }

 private:
  std::vector<File> filesNow(const std::string& name, std::string summary) const;

  std::string printed_, signatures_;
  std::size_t receiptStart_ = 0;
  int preparationCalls_ = 0;

  std::vector<File> files_;
  std::string signature_;
  bool isClosing_ = false;
  bool isTransferred_ = false;

  bool isRewound_ = false;
  std::size_t file_ = 0;
  bool isInFile_ = false;
  std::size_t position_ = 0;
};

}  // namespace mirvane::emulator
