#include "recorder/record_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/fakes/fake_machine.h"
#include "text/code_page.h"
#include "text/text.h"

namespace mirvane::test {
namespace {

using namespace recorder;

constexpr TextView kFolder = u"C:\\till\\records";
const std::string kProgram = [] {
  std::string name = toUtf8(platform::hostProcess().name);
  std::replace(name.begin(), name.end(), '-', '_');
  return name + ".txt";
}();

class RecordFolder : public testing::Test {
 protected:
  RecordFolder() {
    files.onAppend = [this](std::size_t count) {
      const std::size_t taken = std::min(count, room);
      room -= taken;
      return taken;
    };
  }
  /// Another process of the program.
  std::unique_ptr<RecordFiles> process(const Limits& limits = {}) {
    return std::make_unique<RecordFiles>(files, clock, Text(kFolder), limits);
  }
  void tell(RecordFiles& to, const std::string& texts) {
    for (const char text : texts) {
      to.add({clock.sinceEpoch(), EventKind::kCall, 0, std::string(1, text)});
      to.flush();
    }
  }
  void tell(const std::string& texts) { tell(*own, texts); }
  /// What stands in the folder: "1:25 >ab-3!c" is file 1, of the 25th, a start, the events a and b, three lost, a line
  /// that is none, and the event c.
  std::string told() const {
    std::string all;
    for (const auto& [name, content] : files.below(toUtf8(kFolder) + "\\")) {
      EXPECT_TRUE(name.ends_with("-" + kProgram)) << name;
      all += (all.empty() ? "" : " ") + std::to_string(std::stoi(name.substr(5))) + ":" + name.substr(18, 2) + " ";
      const std::vector<Text> lines = split(fromUtf8(content), u'\n');
      for (const Text& line : lines) {
        if (&line == &lines.back() && line.empty()) continue;
        const auto event = parsedEvent(toUtf8(line.substr(0, line.size() - 1)));
        if (!event || !line.ends_with(u'\r')) {
          all += '!';
        } else if (event->kind == EventKind::kStarted) {
          all += '>';
        } else {
          all += event->kind == EventKind::kLost ? "-" + std::to_string(event->number) : event->text;
        }
      }
    }
    return all;
  }

  FakeClock clock;
  FakeFiles files;
  std::size_t room = std::string::npos;
  std::unique_ptr<RecordFiles> own = process();
};

TEST_F(RecordFolder, WhatIsGoneIsFollowedByANewFile) {
  const auto empty = [this] { files.contents.clear(); };
  const auto move = [this] {
    for (const auto& [name, content] : files.below(toUtf8(kFolder) + "\\"))
      files.contents[u"C:\\old\\" + fromUtf8(name)] = content;
    std::erase_if(files.contents, [](const auto& file) { return file.first.starts_with(kFolder); });
  };
  const auto takeAway = [this, move] { move(), files.unwritable = kFolder; };
  const auto bringBack = [this] { files.unwritable = u"?"; };
  tell("ab");
  empty();
  tell("c");
  EXPECT_EQ(told(), "1:25 >c");
  move();
  tell("d");
  EXPECT_EQ(told(), "1:25 >d");
  takeAway();
  tell("efg");
  EXPECT_EQ(told(), "");
  bringBack();
  tell("hi");
  EXPECT_EQ(told(), "1:25 >-3hi");
}

TEST_F(RecordFolder, NoClockRemovesAFile) {
  // Day by day, from the first on: what is told on it, and what is there in the end.
  const std::pair<std::vector<int>, std::string> cases[] = {
      {{0, 1, 0, 1, 0, 1}, "1:25 >a 2:26 >b 3:25 >c 4:26 >d 5:25 >e 6:26 >f"},
      {{0, 400, 0, 0}, "1:25 >a 2:29 >b 3:25 >cd"},
      {{0, -400, 1}, "1:25 >a 2:19 >b 3:26 >c"}};
  constexpr double kSecondsOfADay = 86400;
  for (const auto& [days, expected] : cases) {
    files.contents.clear();
    own = process();
    std::string text = "a";
    for (const int day : days) {
      clock.startOfDay += kSecondsOfADay * day;
      tell(text);
      clock.startOfDay -= kSecondsOfADay * day;
      ++text[0];
    }
    EXPECT_EQ(told(), expected);
  }
}

TEST_F(RecordFolder, WhatAFullDiskDidNotTakeIsToldOnALineOfItsOwn) {
  constexpr std::size_t kMost = 300;
  // What is told with room, on a disk that takes ten bytes, on one that takes more and more, and with room again; and
  // what comes of it, the more it takes.
  const struct {
    std::string before, cut, full, after;
    std::vector<std::string> expected;
  } cases[] = {{"a", "", "bc", "d", {">a-2d", ">ab-1d", ">abcd"}},
               {"", "", "ab", "c", {">-2c", ">a-1c", ">abc"}},
               {"a", "b", "c", "d", {">ab-1d", ">abcd"}},
               {"a", "bc", "d", "e", {">ab-2e", ">ab-1-1e", ">ab-1de"}}};
  for (const auto& [before, cut, full, after, expected] : cases) {
    std::vector<std::string> outcomes;
    for (std::size_t left = 0; left < kMost; ++left) {
      files.contents.clear();
      own = process();
      tell(before);
      room = 10;
      tell(cut);
      room = left;
      tell(full);
      room = std::string::npos;
      tell(after);
      if (outcomes.empty() || outcomes.back() != told()) outcomes.push_back(told());
    }
    for (std::string& outcome : outcomes) outcome.erase(0, outcome.find('>'));
    EXPECT_EQ(outcomes, expected);
  }
}

TEST_F(RecordFolder, NoFileBeginsWithACutLine) {
  room = 20;
  tell("ab");
  EXPECT_EQ(told(), "");
}

TEST_F(RecordFolder, ALineThatAnEndedProcessLeftCutIsNone) {
  tell("ab");
  const std::string whole = files.contents.begin()->second;
  for (std::size_t size = whole.rfind("\r\n", whole.size() - 3) + 3; size < whole.size(); ++size) {
    own = nullptr;
    files.contents.begin()->second = whole.substr(0, size);
    tell(*process(), "c");
    EXPECT_EQ(told(), "1:25 >a!>c") << size;
  }
}

TEST_F(RecordFolder, ADayOfAProgramHasAsManyFilesAsWroteAtATime) {
  for (const char text : std::string("abc")) tell(*process(), {text});
  EXPECT_EQ(told(), "1:25 >a>b>c");
  auto other = process();
  tell(*other, "d");
  tell("e");
  for (const char text : std::string("fgh")) {
    other = process();
    tell(*other, {text});
    std::swap(own, other);
  }
  EXPECT_EQ(told(), "1:25 >a>b>c>d>f>h 2:25 >e>g");
  clock.startOfDay += 86400;
  tell(*other, "i");
  tell("j");
  EXPECT_EQ(told(), "1:25 >a>b>c>d>f>h 2:25 >e>g 3:26 >i 4:26 >j");
}

TEST_F(RecordFolder, TheFilesBegunLastAreKeptAndThoseBeingWritten) {
  const Text path = Text(kFolder) + u"\\";
  const TextView others[] = {u"notes.txt", u"line-x.txt", u"line-000001-2024.txt", u"line-20240325-a.exe-1.txt"};
  for (const Limits& limits : {Limits{2000, 1 << 20, 4}, Limits{2000, 2500, 99}}) {
    files.contents.clear();
    files.contents[path + u"line-000001-20300101-a.exe.txt"] = "x";
    for (const TextView name : others) files.contents[path + Text(name)] = "x";
    const auto before = process(limits);
    tell(*before, "a");
    for (int i = 0; i < 20; ++i) {
      clock.startOfDay += i % 2 == 0 ? 86400 : -86400;
      tell(*process(limits), "b");
    }
    for (const TextView name : others) EXPECT_EQ(files.contents.erase(path + Text(name)), 1U);
    EXPECT_EQ(told(), "2:25 >a 19:26 >b 20:25 >b 21:26 >b 22:25 >b");
  }
}

TEST_F(RecordFolder, NoFileIsLargerThanItMayBe) {
  own = process({2000, 1 << 20, 99});
  for (int i = 0; i < 100; ++i) own->add({clock.sinceEpoch(), EventKind::kCall, 0, "a"});
  own->flush();
  EXPECT_EQ(files.contents.size(), 4U);
  for (const auto& [name, content] : files.contents) EXPECT_LE(content.size(), 2000U);
  EXPECT_EQ(std::ranges::count(told(), 'a'), 100);
}

// What the fakes only say.
TEST(HostFiles, AFileGrowsByOneAloneWhoHoldsIt) {
  const std::string folder = testing::TempDir() + "mirvane-host-files-" + std::to_string(platform::hostProcess().id);
  std::filesystem::create_directory(folder);
  platform::Files& files = platform::hostPlatform().files;
  const Text path = fromUtf8(folder) + u"\\a.txt";
  EXPECT_FALSE(files.fileSize(path));
  auto growing = files.grow(path);
  ASSERT_NE(growing, nullptr);
  EXPECT_EQ(growing->append("abc"), 3U);
  EXPECT_EQ(files.grow(path), nullptr);
  files.remove(path);
  EXPECT_EQ(files.fileSize(path), 3U);
  std::filesystem::rename(folder + "/a.txt", folder + "/b.txt");
  EXPECT_FALSE(files.fileSize(path));
  growing = nullptr;
  EXPECT_EQ(files.grow(fromUtf8(folder) + u"\\b.txt")->append("d"), 1U);
  EXPECT_EQ(files.read(fromUtf8(folder) + u"\\b.txt"), "abcd");
  files.remove(fromUtf8(folder) + u"\\b.txt");
  EXPECT_EQ(files.fileNames(fromUtf8(folder)).size(), 0U);
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace mirvane::test
