#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace mirvane::test {

using FileMap = std::map<std::string, std::string>;

/// An empty folder to be in while a test runs: drive c: is below it. The emulator keeps its own copies in `device`.
class JournalFolders {
 public:
  JournalFolders() {
    std::filesystem::remove_all(home);
    std::filesystem::create_directories(device);
    std::filesystem::current_path(home);
  }
  JournalFolders(const JournalFolders&) = delete;
  JournalFolders& operator=(const JournalFolders&) = delete;
  ~JournalFolders() {
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(home);
  }

  /// The files of a folder and what is in them.
  static FileMap filesIn(const std::filesystem::path& folder) {
    FileMap files;
    if (!std::filesystem::exists(folder)) return files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      std::stringstream bytes;
      bytes << std::ifstream(entry.path(), std::ios::binary).rdbuf();
      files[entry.path().filename()] = bytes.str();
    }
    return files;
  }
  /// What the device handed over for a closing, as files.
  FileMap handedOver(const std::string& z) const {
    FileMap files;
    for (auto& [name, bytes] : filesIn(device)) {
      if (name.substr(11, 4) == z) files[name] = bytes + "\r\n";
    }
    return files;
  }
  /// Both journal folders of a closing hold what the device handed over, byte by byte, and nothing else.
  void expectSaved(const std::string& z) const {
    const FileMap expected = handedOver(z);
    EXPECT_EQ(expected.size(), 3U);
    for (const char* drive : {"c:/bbox", "c:/bboxBackUp"}) {
      const FileMap saved = filesIn(std::filesystem::path(drive) / kSerialNumber / z);
      EXPECT_TRUE(saved == expected) << drive << " differs for Z " << z << ", " << saved.size() << " files";
    }
  }

  static constexpr const char* kSerialNumber = "MVE25000017";
  const std::filesystem::path home = testing::TempDir() + "mirvane-day-" + std::to_string(getpid());
  const std::filesystem::path device = home / "device";

 private:
  const std::filesystem::path before_ = std::filesystem::current_path();
};

}  // namespace mirvane::test
