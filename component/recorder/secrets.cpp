#include "recorder/secrets.h"

#include <algorithm>
#include <utility>

#include "protocol/wire.h"

namespace mirvane::recorder {
namespace {

constexpr std::string_view kMask = "***";
constexpr std::string_view kHexDigits = "0123456789ABCDEFabcdef";
constexpr std::size_t kShortestKey = 32;
// Amounts and numbers cut at an edge are shorter, and a shorter part of a key reveals nothing.
constexpr std::size_t kShortestPart = 8;

bool isControl(char c) { return c == wire::kStx || c == wire::kEtx || c == wire::kAck || c == wire::kNak; }

// Replaces each field from `first` on by the mask; fields before it and the framing stay.
std::string maskedFrom(std::size_t first, std::string_view bytes) {
  std::string result;
  std::size_t field = 0;
  bool isMasked = false;
  for (const char c : bytes) {
    if (c == '/') ++field;
    if (c == '/' || isControl(c)) {
      isMasked = false;
      result += c;
    } else if (field < first) {
      result += c;
    } else if (!std::exchange(isMasked, true)) {
      result += kMask;
    }
  }
  return result;
}

bool isNumber(std::string_view field) {
  return !field.empty() && field.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

bool isHexDigit(char c) { return kHexDigits.find(c) != std::string_view::npos; }

std::string KeyMask::masked(std::string_view piece) {
  std::string result(piece);
  for (std::size_t at = 0, end = 0; at < piece.size(); at = end) {
    end = std::min(piece.find_first_not_of(kHexDigits, at), piece.size());
    last_ += end - at;
    const bool isAtEdge = at == 0 || end == piece.size();
    if (last_ >= (isAtEdge ? kShortestPart : kShortestKey)) std::fill(&result[at], &result[end], '*');
    if (end == piece.size()) break;
    last_ = 0;
    end = std::min(piece.find_first_of(kHexDigits, end), piece.size());
  }
  return result;
}

std::string Secrets::masked(EventKind kind, std::string_view text, bool holdsKey) {
  if (kind == EventKind::kSent) return maskedSent(sent_.masked(text), holdsKey);
  return isOfLine(kind) ? maskedReceived(received_.masked(text)) : KeyMask().masked(text);
}

std::string Secrets::maskedSent(std::string_view bytes, bool holdsKey) {
  if (bytes.empty() || bytes.front() != wire::kStx) return std::string(bytes);
  wasServer_ = isServer_;
  isServer_ = holdsKey;
  // The command, a flag, the URL, port, key: the URL may contain slashes.
  constexpr std::size_t kBehindUrl = 3;
  return holdsKey ? maskedFrom(kBehindUrl, bytes) : std::string(bytes);
}

std::string Secrets::maskedReceived(std::string_view bytes) const {
  if (!isServer_ && !wasServer_) return std::string(bytes);
  // Result, printer, fiscal, active, then the URL in one or more pieces, its port, the key. The first field that could
  // be the port is the port or comes before it.
  constexpr std::size_t kFirstPort = 5;
  std::size_t field = 0;
  if (!bytes.starts_with(wire::kStx)) return maskedFrom(field, bytes);
  for (std::size_t at = 0; at != std::string_view::npos && at < bytes.size(); ++field) {
    const std::size_t end = std::min(bytes.find('/', at), bytes.size());
    if (field >= kFirstPort && isNumber(bytes.substr(at, end - at))) return maskedFrom(field + 1, bytes);
    at = end + 1;
  }
  return maskedFrom(kFirstPort, bytes);
}

}  // namespace mirvane::recorder
