#include "emulator/roll.h"

namespace mirvane::emulator {

void Roll::begin(Document document) {
  // Ends an open note or report.
  if (isOpen_) end(Document::State::kClosed);
  document.id = ++lastId_;
  documents_.push_back(std::move(document));
  isOpen_ = true;
  if (documents_.size() > kMostDocuments) documents_.pop_front();
}

void Roll::end(Document::State state, std::optional<Receipt> receipt) {
  documents_.back().state = state;
  documents_.back().receipt = std::move(receipt);
  isOpen_ = false;
}

void Roll::print(const PaperLine& line) {
  constexpr std::size_t kLongestNote = 500;
  const bool addsNothing = line.isCut || line.text.empty();
  if (documents_.empty() && addsNothing) return;
  if (!isOpen_ && !addsNothing) begin({});
  documents_.back().lines.push_back(line);
  const bool isLong = documents_.back().kind == Document::Kind::kNote && documents_.back().lines.size() >= kLongestNote;
  if (isOpen_ && isLong) end(Document::State::kClosed);
}

const Document* Roll::find(int id) const {
  const bool isThere = !documents_.empty() && id >= documents_.front().id && id <= documents_.back().id;
  return isThere ? &documents_[static_cast<std::size_t>(id - documents_.front().id)] : nullptr;
}

void Roll::clear() {
  documents_.clear();
  isOpen_ = false;
}

}  // namespace mirvane::emulator
