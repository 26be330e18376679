#include "emulator/journal.h"

#include <algorithm>
#include <bit>

#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

constexpr int kPreparationCalls = 2;

std::uint32_t stirred(std::uint32_t lane, std::uint32_t value) {
  return std::rotl((lane ^ value) * 0x01000193U, 13) + value;
}

/// What is read at once of a tape that is gone through.
constexpr std::size_t kStride = 65'536;

class MemoryTape : public Tape {
 public:
  void append(std::string_view bytes) override { bytes_ += bytes; }
  std::size_t size() const override { return bytes_.size(); }
  std::string read(std::size_t position, std::size_t count) const override { return bytes_.substr(position, count); }
  void clear() override { bytes_.clear(); }

 private:
  std::string bytes_;
};

/// A line of what fills up a file, with its end.
constexpr std::size_t kPadLine = 50;

/// What fills up `room` bytes, from the byte at `position` on, some lines of it: numbered ones, so that a piece lost or
/// doubled in a transfer shows.
std::string padding(std::size_t room, std::size_t position) {
  std::size_t number = position / kPadLine;
  // The last line may be a byte longer than the others.
  if (number > 0 && room - number * kPadLine < 2) --number;
  const std::size_t start = number * kPadLine;
  // The rest after a complete line must have room for a line end.
  const std::size_t width = room - start <= kPadLine + 1 ? room - start - 2 : kPadLine - 2;
  std::string line = "* " + std::to_string(number + 1) + " ";
  line.resize(width, '*');
  return (line + "\r\n").substr(position - start);
}

}  // namespace

void Signature::add(std::string_view bytes) {
  for (const char byte : bytes) {
    std::uint32_t& lane = lanes_[size_++ % lanes_.size()];
    lane = stirred(lane, static_cast<unsigned char>(byte));
  }
}

std::string Signature::digits() const {
  auto lanes = lanes_;
  for (std::size_t i = 0; i < 40; ++i) {
    lanes[i % 5] = stirred(lanes[i % 5], lanes[(i + 1) % 5] + static_cast<std::uint32_t>(size_));
  }
  std::string digits;
  for (const std::uint32_t value : lanes) {
    for (int shift = 28; shift >= 0; shift -= 4) digits.push_back("0123456789ABCDEF"[value >> shift & 0x0F]);
  }
  return digits;
}

Journal::Journal() : printed_(std::make_unique<MemoryTape>()), signatures_(std::make_unique<MemoryTape>()) {}

void Journal::keepOn(std::unique_ptr<Tape> printed, std::unique_ptr<Tape> signatures) {
  printed_ = std::move(printed);
  signatures_ = std::move(signatures);
}

void Journal::appendLine(std::string& bytes, TextView line) {
  std::string text = toCodePage(line);
  std::replace(text.begin(), text.end(), '/', '-');
  bytes.append(text).append("\r\n");
}

void Journal::record(TextView line) {
  std::string bytes;
  appendLine(bytes, line);
  printed_->append(bytes);
}

void Journal::signReceipt(TextView particulars) {
  Signature signature;
  signature.add(printed_->read(memory_.receiptStart, printed_->size()));
  std::string line;
  appendLine(line, Text(particulars).append(u" ").append(fromCodePage(signature.digits())));
  signatures_->append(line);
}

bool Journal::advancePreparation() {
  if (memory_.preparationCalls == kPreparationCalls) return true;
  ++memory_.preparationCalls;
  return false;
}

const Tape& Journal::tapeOf(const Prepared& file) const {
  return file.source == Prepared::Source::kPrinted ? *printed_ : *signatures_;
}

std::size_t Journal::sizeOf(const Prepared& file) const {
  if (file.source == Prepared::Source::kText) return file.text.size();
  // Less than a line end is not padded.
  return file.padding >= file.size + 2 ? file.padding : file.size;
}

std::string Journal::read(const Prepared& file, std::size_t position, std::size_t count) const {
  if (file.source == Prepared::Source::kText) return file.text.substr(position, count);
  const std::size_t end = std::min(position + count, sizeOf(file));
  std::string bytes;
  if (position < file.size) bytes = tapeOf(file).read(position, std::min(end, file.size) - position);
  while (position + bytes.size() < end) {
    bytes += padding(sizeOf(file) - file.size, position + bytes.size() - file.size);
  }
  bytes.resize(end - position);
  return bytes;
}

std::vector<Journal::Prepared> Journal::filesNow(const std::string& name, std::string summary) const {
  using Source = Prepared::Source;
  return {{name + "_a.txt", Source::kPrinted, printed_->size(), options.padding, {}},
          {name + "_b.txt", Source::kSignatures, signatures_->size(), 0, {}},
          {name + "_s.txt", Source::kText, 0, 0, std::move(summary)}};
}

void Journal::prepare(const std::string& name, std::string summary) {
  memory_.files = filesNow(name, std::move(summary));
  rewind();
}

bool Journal::prepareClosing(const std::string& name, std::string summary) {
  std::vector<Prepared> files = filesNow(name, std::move(summary));
  if (options.keep && !std::all_of(files.begin(), files.end(), [this](const Prepared& file) {
        return options.keep({file.name, read(file, 0, sizeOf(file))});
      })) {
    return false;
  }
  Signature whole;
  for (const std::size_t i : {0U, 1U}) {
    Signature signature;
    for (std::size_t at = 0; at < sizeOf(files[i]); at += kStride) signature.add(read(files[i], at, kStride));
    whole.add(signature.digits());
  }
  memory_.signature = whole.digits();
  memory_.files = std::move(files);
  memory_.isClosing = true;
  memory_.isTransferred = false;
  rewind();
  return true;
}

void Journal::rewind() {
  isRewound_ = true;
  file_ = 0;
  isInFile_ = false;
}

void Journal::startAnew() {
  printed_->clear();
  signatures_->clear();
  memory_ = {};
  rewind();
}

bool Journal::holds(const Memory& memory) const {
  return memory.receiptStart <= printed_->size() &&
         std::all_of(memory.files.begin(), memory.files.end(), [this](const Prepared& file) {
           return file.source == Prepared::Source::kText || file.size <= tapeOf(file).size();
         });
}

void Journal::recall(Memory memory) {
  memory_ = std::move(memory);
  rewind();
}

std::optional<Journal::Step> Journal::read() {
  using State = Step::State;
  if (isRewound_) {
    isRewound_ = false;
    return std::nullopt;
  }
  const std::vector<Prepared>& files = memory_.files;
  if (file_ == files.size()) return Step{State::kJournalEnds, {}, files.back().name};
  const Prepared& file = files[file_];
  if (!isInFile_) {
    isInFile_ = true;
    position_ = 0;
    return Step{State::kFileBegins, {}, file.name};
  }
  if (position_ < sizeOf(file)) {
    const std::string piece = read(file, position_, options.pieceSize);
    position_ += piece.size();
    return Step{State::kPiece, piece, file.name};
  }
  isInFile_ = false;
  if (++file_ < files.size()) return Step{State::kFileEnds, {}, file.name};
  memory_.isTransferred = true;
  return Step{State::kJournalEnds, {}, file.name};
}

}  // namespace mirvane::emulator
