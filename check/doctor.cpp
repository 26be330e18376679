#include "check/doctor.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>

#include "check/machine.h"
#include "check/texts.h"
#include "platform/ports.h"
#include "support/electronic_journal.h"
#include "text/code_page.h"

namespace mirvane::check {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMegabyte = 1 << 20;
constexpr std::uintmax_t kLittleSpace = 1024 * kMegabyte;
constexpr std::uintmax_t kNoSpace = 50 * kMegabyte;

// Only trying shows what a user may do.
bool canWriteInto(const fs::path& folder) {
  const fs::path probe = folder / "mirvane-check.tmp";
  const bool written = (std::ofstream(probe, std::ios::binary) << "mirvane-check" << std::flush).good();
  std::error_code ignored;
  fs::remove(probe, ignored);
  return written;
}

// Creates the folder and those above it while this object exists; removes only what it created.
class TriedFolder {
 public:
  explicit TriedFolder(const fs::path& folder) {
    std::error_code error;
    for (fs::path each = folder; !each.empty() && !fs::exists(each, error); each = each.parent_path()) {
      made_.push_back(each);
    }
    fs::create_directories(folder, error);
  }
  TriedFolder(const TriedFolder&) = delete;
  TriedFolder& operator=(const TriedFolder&) = delete;
  ~TriedFolder() {
    std::error_code ignored;
    for (const fs::path& folder : made_) fs::remove(folder, ignored);
  }

 private:
  std::vector<fs::path> made_;
};

// The registers' own folders inside may belong to another user.
fs::path firstReadOnly(const fs::path& folder) {
  if (!canWriteInto(folder)) return folder;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    if (entry.is_directory(error) && !canWriteInto(entry.path())) return entry.path();
  }
  return {};
}

void examineJournalFolder(Findings& findings, const fs::path& folder) {
  const std::string name = nameOf(folder);
  const TriedFolder tried(folder);
  std::error_code error;
  if (!fs::is_directory(folder, error)) {
    if (fs::exists(folder, error)) {
      findings.fault(say(texts::kIsFile, {name}), say(texts::kRenameFile, {name}));
    } else {
      findings.fault(say(texts::kCannotBeMadeFolder, {name}), say(texts::kMakeFolder, {name}));
    }
    return;
  }
  if (const fs::path readOnly = firstReadOnly(folder); !readOnly.empty()) {
    findings.fault(say(texts::kNoRights, {nameOf(readOnly)}), say(texts::kGiveRights, {name}));
  } else {
    findings.ok(say(texts::kJournalWritable, {name}));
  }
}

void examineDisk(Findings& findings, fs::path folder) {
  std::error_code error;
  folder = fs::absolute(folder, error);
  while (!fs::exists(folder, error) && folder.has_relative_path()) folder = folder.parent_path();
  const std::uintmax_t available = fs::space(folder, error).available;
  if (error) return;
  const std::string name = nameOf(folder), megabytes = std::to_string(available / kMegabyte);
  if (available < kNoSpace) {
    findings.fault(say(texts::kDiskFull, {name, megabytes}), say(texts::kFreeDisk));
  } else if (available < kLittleSpace) {
    findings.warning(say(texts::kDiskFull, {name, megabytes}), say(texts::kFreeDisk));
  } else {
    findings.ok(say(texts::kDisk, {name, megabytes}));
  }
}

void examineJournal(Findings& findings) {
  std::vector<Text> patterns;
  try {
    patterns = FiscalJournal().folderPatterns();
  } catch (const std::exception&) {
    // As with a box that reports no folders.
  }
  if (patterns.empty()) findings.fault(say(texts::kNoJournalFolders), say(texts::kMendBox));
  std::set<fs::path> disks;
  for (const Text& pattern : patterns) {
    std::string root = toUtf8(pattern.substr(0, pattern.find(u'$')));
    while (root.ends_with('\\')) root.pop_back();
    const fs::path folder = pathOf(root);
    examineJournalFolder(findings, folder);
    if (disks.insert(folder.root_name()).second) examineDisk(findings, folder);
  }
}

void examineRecords(Findings& findings, const std::vector<fs::path>& folders) {
  for (const fs::path& folder : folders) {
    const fs::path records = folder / "records";
    const std::string name = nameOf(records);
    std::error_code error;
    if (const fs::path shown = shownInPlaceOf(records); !shown.empty()) {
      findings.warning(say(texts::kRecordsElsewhere, {nameOf(shown), name}), say(texts::kMakeFolder, {name}));
    }
    if (!fs::is_directory(records, error)) {
      findings.note(say(texts::kNoRecords, {name}));
    } else if (canWriteInto(records)) {
      findings.ok(say(texts::kRecords, {name}));
    } else {
      findings.warning(say(texts::kRecordsReadOnly, {name}), say(texts::kGiveRights, {name}));
    }
  }
}

}  // namespace

void examineCatalogue(Findings& findings, const fs::path& folder) {
  constexpr std::size_t kField = 100, kLineEnd = 2;
  const fs::path file = folder / "Lang.dat";
  const std::string remedy = say(texts::kCopyCatalogue, {nameOf(folder)});
  std::ifstream stream(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  if (!stream.is_open()) return findings.fault(say(texts::kNoCatalogue, {nameOf(file)}), remedy);
  const std::size_t record = bytes.empty() ? 0 : static_cast<unsigned char>(bytes.front()) * kField + kLineEnd;
  const bool isWhole = bytes.size() > record && record > kLineEnd && (bytes.size() - 1) % record == 0;
  if (!isWhole) return findings.fault(say(texts::kBadCatalogue, {nameOf(file)}), remedy);
  findings.ok(say(texts::kCatalogue, {nameOf(file)}));
}

std::string now() {
  const platform::LocalTime time = platform::hostPlatform().clock.localTime();
  std::array<char, 80> text{};
  std::snprintf(text.data(), text.size(), "%02d-%02d-%04d %02d:%02d:%02d", time.day, time.month, time.year, time.hour,
                time.minute, time.second);
  return text.data();
}

std::string listOfPorts() {
  std::string list;
  for (const SerialPortName& port : serialPorts()) {
    list += (list.empty() ? "" : ", ") + port.name;
    if (!port.description.empty()) list += " (" + port.description + ")";
  }
  return list;
}

Findings examineMachine(std::vector<fs::path>& folders) {
  Findings findings;
  if (folders.empty()) {
    examineComponent(findings, folders);
  } else {
    for (const fs::path& folder : folders) examineFolder(findings, folder);
  }
  examineJournal(findings);
  const std::string ports = listOfPorts();
  if (ports.empty()) {
    findings.note(say(texts::kNoPorts));
  } else {
    findings.ok(say(texts::kPortList, {ports}));
  }
  examineRecords(findings, folders);
  findings.sortWorstFirst();
  return findings;
}

}  // namespace mirvane::check
