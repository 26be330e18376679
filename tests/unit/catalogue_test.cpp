#include "state/message_catalogue.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

class Catalogue : public ComponentTest {
 protected:
  static std::string message(Long number, Byte language = 0) { return toUtf8(langMessage(number, language)); }
};

TEST_F(Catalogue, FindsTheFieldOfEveryMessageAndLanguage) {
  for (const int languages : {1, 2, 3, 255}) {
    std::map<std::size_t, std::string> fields;
    const auto count = static_cast<std::size_t>(languages);
    for (std::size_t i = 0; i < 4 * count; ++i) fields[i] = "Μήνυμα " + std::to_string(i);
    files.setCatalogue(static_cast<Byte>(languages), fields, 4);
    for (std::size_t i = 0; i < 4 * count; ++i) {
      EXPECT_EQ(message(static_cast<Long>(i / count) + 1, static_cast<Byte>(i % count)), fields[i]) << languages;
    }
    EXPECT_EQ(message(0), "Μήνυμα 0");
    EXPECT_EQ(message(-2147483647 - 1), "Μήνυμα 0");
  }
}

TEST_F(Catalogue, TextsAreCutAndBroken) {
  const std::string full(100, 'x'), late = std::string(99, ' ') + "x";
  const std::pair<std::string, std::string> cases[] = {{"one~two", "one\r\ntwo"},
                                                       {"text  \"comment \" more", "text  "},
                                                       {"\"all comment", ""},
                                                       {"  both ends  ", "  both ends"},
                                                       {"", "Message #7 Lang = 0"},
                                                       {full, full},
                                                       {late, late}};
  for (const auto& [field, text] : cases) {
    files.setCatalogue(1, {{6, field}}, 8);
    EXPECT_EQ(message(7), text) << field;
  }
}

TEST_F(Catalogue, WhatCannotBeReadIsEmpty) {
  files.setCatalogue(2, {{0, "a"}, {1, "b"}, {2, "c"}, {3, "d"}, {4, "e"}, {5, "f"}}, 3);
  EXPECT_EQ(message(4), "");
  EXPECT_EQ(message(2, 2), "") << "no such language, although more text follows";
  for (const Long huge : {10000000, 21474836, 2147483647}) EXPECT_EQ(message(huge), "") << huge;
  files.contents[FakeFiles::kCatalogue].resize(1 + 3 * 202 - 3);
  EXPECT_EQ(message(3, 1), "") << "it ends within the field";
  files.contents.clear();
  EXPECT_EQ(message(2), "");
  files.contents[FakeFiles::kCatalogue] = std::string(1, '\0') + std::string(500, 'x');
  EXPECT_EQ(message(1), "") << "a catalogue of no language";
}

TEST_F(Catalogue, TheComponentsOwnTextsComeWithIt) {
  moduleState().platform = &platform::hostPlatform();
  EXPECT_EQ(message(message::kBoxTitle), "Φορολογικός Εκτυπωτής");
  EXPECT_EQ(message(message::kPortNotOpen, kEnglish), "The register's port is not open!");
}

}  // namespace
}  // namespace mirvane::test
