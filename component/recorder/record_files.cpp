#include "recorder/record_files.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <utility>

#include "text/code_page.h"
#include "version.h"

namespace mirvane::recorder {
namespace {

constexpr TextView kPrefix = u"line-";
constexpr TextView kSuffix = u".txt";
constexpr const char* kCut = "<cut>\r\n";
constexpr TextView kDigits = u"0123456789";
constexpr std::size_t kNumberDigits = 6;
constexpr std::size_t kDayDigits = 8;
// What a file holds besides the lines of events: a "started" and a "lost".
constexpr std::uint64_t kMostHead = 400;

Text asciiText(std::string_view text) { return {text.begin(), text.end()}; }

// "20261122" of "2026-11-22 …".
Text dayOf(std::string_view line) {
  return asciiText(std::string(line.substr(0, 4)).append(line.substr(5, 2)).append(line.substr(8, 2)));
}

std::int32_t linesIn(std::string_view text) { return static_cast<std::int32_t>(std::ranges::count(text, '\n')); }

Text fileSafe(TextView name) {
  Text safe(name);
  std::replace_if(
      safe.begin(), safe.end(),
      [](char16_t c) { return c <= u' ' || TextView(u"\\/:*?\"<>|-").find(c) != TextView::npos; }, u'_');
  return safe;
}

Text nameOf(std::uint32_t number, TextView day, TextView program) {
  Text digits = asciiText(std::to_string(number));
  digits.insert(0, kNumberDigits - std::min(digits.size(), kNumberDigits), u'0');
  return Text(kPrefix) + digits + u"-" + Text(day) + u"-" + Text(program) + Text(kSuffix);
}

// The number of a record file; nothing if the name is not one of ours.
std::optional<std::uint32_t> numberOf(TextView name) {
  constexpr std::size_t kMostDigits = 9;
  if (!name.starts_with(kPrefix) || !name.ends_with(kSuffix)) return {};
  name.remove_prefix(kPrefix.size());
  const std::size_t digits = name.find_first_not_of(kDigits);
  const TextView rest = name.substr(digits);
  const bool isNumber = digits >= kNumberDigits && digits <= kMostDigits && rest.front() == u'-';
  constexpr std::size_t kBehindDay = 1 + kDayDigits;
  if (!isNumber || rest.find_first_not_of(kDigits, 1) != kBehindDay || rest[kBehindDay] != u'-') return {};
  std::uint32_t number = 0;
  for (const char16_t digit : name.substr(0, digits)) number = number * 10 + (digit - u'0');
  return number;
}

}  // namespace

RecordFiles::RecordFiles(platform::Files& files, platform::Clock& clock, Text folder, const Limits& limits)
    : files_(files), clock_(clock), folder_(std::move(folder)), limits_(limits) {}

void RecordFiles::add(const Event& event) {
  const std::string line = formatted(event, zoneAt(event.time));
  const bool isLost = event.kind == EventKind::kLost;
  const bool fits = size_ + lines_.size() + line.size() + kMostHead <= limits_.file;
  if (!lines_.empty() && (isLost || !fits || day_ != dayOf(line))) flush();
  if (lines_.empty()) {
    day_ = dayOf(line);
    time_ = event.time;
  }
  if (isLost) {
    missing_ += event.number;
  } else {
    lines_ += line;
  }
}

bool RecordFiles::flush() {
  if (head_.empty() && missing_ == 0 && lines_.empty()) return true;
  if (!canGoOn()) close();
  if (file_ != nullptr || open()) return write();
  missing_ += linesIn(lines_);
  lines_.clear();
  return false;
}

void RecordFiles::close() {
  file_ = nullptr;
  size_ = 0;
  head_.clear();
  missing_ += std::exchange(owed_, 0);
}

int RecordFiles::zoneAt(std::int64_t time) {
  constexpr std::int64_t kQuarterHour = 900000;  // within which no time zone changes
  if (time / kQuarterHour != zoneOf_) {
    zoneOf_ = time / kQuarterHour;
    zone_ = clock_.zoneAt(time);
  }
  return zone_;
}

std::vector<RecordFiles::File> RecordFiles::filesNewestFirst() const {
  std::vector<File> all;
  for (const Text& name : files_.fileNames(folder_)) {
    const auto number = numberOf(name);
    if (number) all.push_back({*number, name, files_.fileSize(pathOf(name)).value_or(0)});
  }
  std::ranges::sort(all, std::greater(), [](const File& file) { return std::tie(file.number, file.name); });
  return all;
}

bool RecordFiles::canGoOn() const {
  const bool isThere = file_ != nullptr && (!isSeen_ || files_.fileSize(path_));
  return isThere && fileDay_ == day_ && size_ + lines_.size() + kMostHead <= limits_.file;
}

bool RecordFiles::open() {
  const Text program = fileSafe(process_.name);
  const std::vector<File> files = filesNewestFirst();
  for (const File& file : files) {
    if (!file.name.ends_with(u"-" + program + Text(kSuffix))) continue;
    // Of another day, and so are all older ones; or the clock has jumped.
    if (file.name != nameOf(file.number, day_, program)) break;
    if (file.size + lines_.size() + kMostHead <= limits_.file && growFile(file.name)) return true;
  }
  // Another process of the program may have been quicker, or may still hold a file that was removed.
  constexpr std::uint32_t kTries = 16;
  const std::uint32_t last = files.empty() ? 0 : files.front().number;
  for (std::uint32_t number = last + 1; number <= last + kTries; ++number) {
    if (!growFile(nameOf(number, day_, program))) continue;
    removeOldest(files);
    return true;
  }
  return false;
}

// If one is too many, so are all older ones. The file just started counts as full.
void RecordFiles::removeOldest(const std::vector<File>& newestFirst) const {
  std::size_t count = 1;
  std::uint64_t size = limits_.file;
  for (const File& file : newestFirst) {
    size += file.size;
    if (++count > limits_.files || size > limits_.folder) files_.remove(pathOf(file.name));
  }
}

bool RecordFiles::growFile(TextView name) {
  path_ = pathOf(name);
  file_ = files_.grow(path_);
  if (file_ == nullptr) return false;
  fileDay_ = day_;
  size_ = file_->size();
  isSeen_ = files_.fileSize(path_).has_value();
  isStarted_ = false;
  // A process that was killed may have left an incomplete line.
  const bool isCut = size_ > 0 && !files_.read(path_).value_or("\n").ends_with('\n');
  head_ = isCut ? kCut : "";
  constexpr int kBits = sizeof(void*) * 8;
  const std::string what =
      MIRVANE_PRODUCT " " MIRVANE_VERSION ", " + std::to_string(kBits) + " bit, in " + toUtf8(process_.name);
  head_ += formatted({time_, EventKind::kStarted, process_.id, what}, zoneAt(time_));
  return true;
}

bool RecordFiles::write() {
  const std::string lost =
      missing_ > 0 ? formatted({time_, EventKind::kLost, missing_, {}}, zoneAt(time_)) : std::string();
  const std::string bytes = head_ + lost + lines_;
  const std::size_t count = file_->append(bytes);
  const bool isNew = size_ == 0;
  size_ += count;
  isStarted_ = isStarted_ || count >= head_.size();
  // What comes next is the rest of the incomplete line.
  const std::size_t lostAt = head_.size(), linesAt = lostAt + lost.size();
  const std::size_t next = count <= lostAt ? lostAt : bytes.find('\n', count - 1) + 1;
  if (next > lostAt) owed_ = next == count ? 0 : next == linesAt ? missing_ : 1;
  if (next >= linesAt) missing_ = 0;
  missing_ += linesIn(lines_) - linesIn(std::string_view(bytes).substr(linesAt, std::max(next, linesAt) - linesAt));
  head_ = bytes.substr(count, next - count);
  lines_.clear();
  if (isStarted_) return count == bytes.size();
  // Every file starts with a complete line.
  close();
  if (isNew) files_.remove(path_);
  return false;
}

}  // namespace mirvane::recorder
