#include "emulator/journal.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace mirvane::emulator {
namespace {

constexpr int kPreparationCalls = 2;

/// Fills `text` up with numbered lines, so that a piece lost or doubled in a transfer shows.
void pad(std::string& text, std::size_t size) {
  constexpr std::size_t kWidth = 48;
  for (int number = 1; text.size() + 2 <= size; ++number) {
    const std::size_t room = size - text.size() - 2;
    // What a whole line would leave must hold a line end.
    std::string line = "* " + std::to_string(number) + " ";
    line.resize(room <= kWidth + 1 ? room : kWidth, '*');
    text.append(line).append("\r\n");
  }
}

}  // namespace

std::string signatureOf(std::string_view bytes) {
  std::array<std::uint32_t, 5> lanes{0x4D495256, 0x414E4520, 0x4A4F5552, 0x4E414C20, 0x32303235};
  const auto stir = [](std::uint32_t& lane, std::uint32_t value) {
    lane = std::rotl((lane ^ value) * 0x01000193U, 13) + value;
  };
  std::size_t lane = 0;
  for (const char byte : bytes) {
    stir(lanes[lane], static_cast<unsigned char>(byte));
    lane = lane == 4 ? 0 : lane + 1;
  }
  for (std::size_t i = 0; i < 40; ++i)
    stir(lanes[i % 5], lanes[(i + 1) % 5] + static_cast<std::uint32_t>(bytes.size()));
  std::string digits;
  for (const std::uint32_t value : lanes) {
    for (int shift = 28; shift >= 0; shift -= 4) digits.push_back("0123456789ABCDEF"[value >> shift & 0x0F]);
  }
  return digits;
}

void Journal::appendLine(std::string& bytes, TextView line) {
  std::string text = toCodePage(line);
  std::replace(text.begin(), text.end(), '/', '-');
  bytes.append(text).append("\r\n");
}

void Journal::signReceipt(TextView particulars) {
  const std::string signature = signatureOf(std::string_view(printed_).substr(receiptStart_));
  appendLine(signatures_, Text(particulars).append(u" ").append(fromCodePage(signature)));
}

bool Journal::advancePreparation() {
  if (preparationCalls_ == kPreparationCalls) return true;
  ++preparationCalls_;
  return false;
}

std::vector<Journal::File> Journal::filesNow(const std::string& name, std::string summary) const {
  std::vector<File> files{{name + "_a.txt", {}}, {name + "_b.txt", signatures_}, {name + "_s.txt", std::move(summary)}};
  files[0].bytes.reserve(std::max(printed_.size(), options.padding));
  files[0].bytes = printed_;
  pad(files[0].bytes, options.padding);
  return files;
}

void Journal::prepare(const std::string& name, std::string summary) {
  files_ = filesNow(name, std::move(summary));
  rewind();
}

bool Journal::prepareClosing(const std::string& name, std::string summary) {
  std::vector<File> files = filesNow(name, std::move(summary));
  if (options.keep && !std::all_of(files.begin(), files.end(), options.keep)) return false;
  signature_ = signatureOf(signatureOf(files[0].bytes) + signatureOf(files[1].bytes));
  files_ = std::move(files);
  isClosing_ = true;
  isTransferred_ = false;
  rewind();
  return true;
}

void Journal::rewind() {
  isRewound_ = true;
  file_ = 0;
  isInFile_ = false;
}

void Journal::startAnew() {
  Options kept = std::move(options);
  *this = Journal();
  options = std::move(kept);
}

std::optional<Journal::Step> Journal::read() {
  using State = Step::State;
  if (isRewound_) {
    isRewound_ = false;
    return std::nullopt;
  }
  if (file_ == files_.size()) return Step{State::kJournalEnds, {}, files_.back().name};
  const File& file = files_[file_];
  if (!isInFile_) {
    isInFile_ = true;
    position_ = 0;
    return Step{State::kFileBegins, {}, file.name};
  }
  if (position_ < file.bytes.size()) {
    const std::string_view piece = std::string_view(file.bytes).substr(position_, options.pieceSize);
    position_ += piece.size();
    return Step{State::kPiece, piece, file.name};
  }
  isInFile_ = false;
  if (++file_ < files_.size()) return Step{State::kFileEnds, {}, file.name};
  isTransferred_ = true;
  return Step{State::kJournalEnds, {}, file.name};
}

}  // namespace mirvane::emulator
