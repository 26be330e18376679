#include "support/electronic_journal.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

using Saved = std::map<std::string, std::string>;

const std::string kText = "ABC123456780042_a.txt", kSigned = "ABC123456780042_s.txt", kDay = "ABC12345678\\0042\\";
const std::string kBeginText = "0//" + kText + "/", kBeginSigned = "0//" + kSigned + "/", kDone = "2//", kEnd = "3//";

/// A journal box that keeps journals on two other drives.
struct FakeBox : Object {
  const ClassInfo& classInfo() const override { return clsStatus::describe(); }
  Value invoke(std::string_view member, ClassInfo::Access /*access*/, Arguments arguments) override {
    if (std::exchange(fails, false)) throw AutomationError(AutomationCode::overflow);
    log += std::string(member) + toUtf8(convertTo<Text>(arguments[0].value()) + convertTo<Text>(arguments[1].value()));
    EXPECT_TRUE(arguments[0].store(Text(u"x:\\$\\")) && arguments[1].store(Text(u"d:\\$\\j\\$\\;e:\\")));
    return {};
  }
  static inline std::string log;
  static inline bool fails = false;
};

class Journal : public DriverTest {
 protected:
  /// Starts afresh; the device will reply so.
  void restart(const Strings& replies = {}, const std::string& behind = "00/00/00/") {
    files = {};
    screen.boxes.clear(), screen.journal.clear();
    screen.eventRounds = 0;
    device.script.clear();
    device.commands.clear();
    answers(replies, behind);
  }
  Value save(Text file, Text& data, Short number) { return journal->call("eEJFileSave", file, data, number); }
  Value savePair(Text file, Text data, Text sign) { return journal->call("EJFileSave", file, data, sign); }
  void expectSaved(const Saved& expected) const {
    for (const char* folder : {"c:\\bbox\\", "c:\\bboxBackUp\\"}) EXPECT_EQ(files.below(folder), expected);
    EXPECT_EQ(files.contents.size(), 2 * expected.size()) << "and nothing else";
  }

  Text errorDesc;
  std::shared_ptr<FiscalJournal> journal = std::make_shared<FiscalJournal>();
};

TEST_F(Journal, TheDialogue) {
  for (int options = 0; options < 4; ++options) {
    bool closesDay = options < 2, withForm = options % 2 == 0;
    const std::string status = closesDay ? "00/00/00/" : "00/04/00/", ask = closesDay ? "A/" : "#/";
    Strings expected = {ask, ask, ask};
    restart({"", ""}, "51/00/00/");
    answers({closesDay ? "42/" : "41/"}, status);
    // What the display makes of it does not matter.
    if (!withForm) device.answer("06/00/00/"), expected.emplace_back("7/1/ΑΝΑΓΝΩΣΗ ΦΟΡΟΛ/");
    answers({"", "1/short", "9/a/b/", "/a/b/", kBeginText, "1/ Αά~ /", "1/b\r\n/", kDone}, status);
    expected.insert(expected.end(), 8, "Q/");
    if (!withForm) device.answer("06/00/00/"), expected.emplace_back("7/2/OK/");
    answers({kBeginSigned, "1/sign/", kEnd}, status);
    expected.insert(expected.end(), 3, "Q/");
    const auto take = [&](auto&... given) { return journal->call("eMakeZreport", errorDesc, given...); };
    EXPECT_EQ(options == 0 ? take() : take(closesDay, withForm), Value(Long{0})) << "True unless told otherwise";
    EXPECT_EQ(device.commands, expected);
    EXPECT_GE(std::exchange(clock.sleeps[5], 0), 11) << "a pause before each question";
    expectSaved({{kDay + kText, " \xC1\xDC~ b\r\n\r\n"}, {kDay + kSigned, "sign\r\n"}});
    const Strings window = {"show", kText, "+ Αά~  5", "+b\r\n 8", kSigned, "+sign 12", "close"};
    EXPECT_EQ(screen.journal, withForm ? window : Strings{});
    EXPECT_EQ(screen.eventRounds >= 2 * 11 - 1, withForm) << "after each wait and after each reply";
  }
}

TEST_F(Journal, HowItEnds) {
  const std::string name = "ABC123456780042/", end = "00/00/00/3//";
  const Strings saved = {"42/", kBeginSigned, "1/s/", kDone}, again = {"42/", kBeginText, kDone, kBeginSigned, "1/s/"};
  const Strings unsaved = {"42/", kBeginText, "1/a/", kBeginSigned, "1/s/", kDone};
  const std::string lost = "-3~H ταμειακή δεν Απαντά!";
  const Strings padded = {
      "42/", "0//" + kText + " . /", "1/a/abc123456780042_A.TXT  /", "1/b/17/", kDone, "0//ABC123456780042_S.TXT  /",
      "1/s/"};
  const std::tuple<const char*, Strings, std::string, std::string, Saved> cases[] = {
      // What got lost on the way ends it; a file that is not told complete is saved when the next begins.
      {"eMakeZreport", {"42/", kBeginText, "1/a/"}, "", lost, {}},
      {"eMakeZreport", {"42/", kBeginText, "1/a/"}, "00/00", lost, {}},
      {"eMakeZreport", {"42/", "0//ABC1234/", "1/a/"}, "00/00/00/1/b/" + kText + "/", lost, {}},
      // A file whose beginning got lost is no part of the next one.
      {"eMakeZreport", {"42/", "1/stray//", kBeginSigned, "1/s/", kDone}, end, lost, {{kDay + kSigned, "s\r\n"}}},
      {"eMakeZreport", {"42/", "1/stray/" + kText + "/", kDone}, "79/00/00/", lost, {}},
      {"MakeZreport", {name, "42/s/", "1/stray/" + kText + "/"}, "00", lost, {}},
      // Names are the same without regard to case and to what the system drops at their end; what else a piece says in
      // the name's place is its own.
      {"eMakeZreport", padded, end, "0", {{kDay + kText, "ab\r\n"}, {kDay + "ABC123456780042_S.TXT", "s\r\n"}}},
      {"eMakeZreport", {"42/", kBeginText, "1/a/" + kText + "/"}, "00/00/00/2//" + kSigned + "/", lost, {}},
      {"MakeZreport", {name, "42/s/", kBeginText, "1/a/"}, "00", lost, {}},
      {"eMakeZreport", unsaved, end, "0", {{kDay + kText, "a\r\n"}, {kDay + kSigned, "s\r\n"}}},
      {"eMakeZreport", saved, end, "0", {{kDay + kSigned, "s\r\n"}}},
      {"eMakeZreport", {"42/", kBeginSigned}, end, "0", {}},
      {"eMakeZreport", {"42/", kBeginText, "1/a/"}, end, "0", {}},
      {"eMakeZreport", {}, "19/04/00/", "25~DEVICE STATUS:Tέλος Χαρτιού !", {}},
      {"eMakeZreport", {"42/"}, "51/00/00/", "81~WORNIGDATE", {}},
      {"eMakeZreport", again, "A7/00/00/x/", "167~A7/00/00/x/", {{kDay + kText, "\r\n"}}},
      {"MakeZreport", {name}, "15/00/00/", "21~z Not closure", {}},
      {"MakeZreport", {name, "42/s/", kBeginSigned, "1/s/", kDone}, "79/00/00/", "121~Empty EJ", {}}};
  for (const auto& [member, replies, last, text, expected] : cases) {
    restart(replies);
    device.answer(last);
    EXPECT_EQ(journal->call(member, errorDesc), Value(Long{std::stoi(text)}));
    EXPECT_EQ(toUtf8(errorDesc), text);
    EXPECT_EQ(device.commands.size(), replies.size() + 1) << text;
    expectSaved(expected);
    EXPECT_TRUE(files.folders.size() == 2 * expected.size() && screen.boxes.empty()) << "saved once, and silently";
    EXPECT_TRUE(screen.journal.empty() || (!replies.empty() && screen.journal.back() == "close")) << text;
  }
}

TEST_F(Journal, FilesAreSavedInBothFolders) {
  // The name's own separators and place marks mean nothing.
  const std::tuple<std::string, Short, std::string> cases[] = {{"ABC123456780042_x", 7, "ABC12345678\\0007\\"},
                                                               {"ABC123456780042_x", 12345, "ABC12345678\\12345\\"},
                                                               {"A;$Γ..56780042.x", 0, "A;$Γ..56780\\0000\\"}};
  for (const auto& [name, number, folder] : cases) {
    restart();
    Text data = u"Ώρα €日\r\n";
    EXPECT_EQ(save(fromUtf8(name), data, number), Value(Long{0}));
    expectSaved({{folder + name, "\xBF\xF1\xE1 \x80?\r\n\r\n"}});
    EXPECT_THAT(files.folders, ElementsAre("c:\\bbox\\" + folder, "c:\\bboxBackUp\\" + folder));
    EXPECT_EQ(data, u"") << "the text is taken";
  }
  restart();
  EXPECT_EQ(savePair(u"ABC123456780042x", u"data", u""), Value(Long{0}));
  expectSaved({{kDay + "ABC123456780042x_a.txt", "data\r\n"}, {kDay + "ABC123456780042x_b.txt", "\r\n"}});
}

TEST_F(Journal, AFileErrorIsATypeMismatch) {
  const auto fails = [&](const Text& file, TextView unwritable) {
    restart();
    files.unwritable = unwritable;
    Text data = u"data";
    EXPECT_EQ(errorOf([&] { save(file, data, 42); }), kTypeMismatch) << toUtf8(file);
    EXPECT_EQ(errorOf([&] { savePair(file, data, u""); }), kTypeMismatch) << toUtf8(file);
    EXPECT_EQ(data, u"data");
    EXPECT_TRUE(unwritable != u"?" || (files.contents.empty() && files.folders.empty())) << toUtf8(file);
  };
  for (const TextView name :
       {u".", u"a\\b", u"a/b", u"a:b", u"ABC123456780042\n", u"\x1F", u"ABC123456780042.", u"ABC123456780042_s.txt ",
        u"con", u"Com7 .txt", u"LPT\u00B2", u"CONOUT$", u"ABC12345678nul.x_s.txt"}) {
    fails(Text(name), u"?");
  }
  // A folder that cannot be made, a file that cannot be written, the second folder; and a device's refused name.
  for (const TextView where : {u"c:\\bbox\\", u"c:\\bbox\\ABC12345678\\0042\\A", u"c:\\bboxBackUp\\", u"?"}) {
    fails(where == u"?" ? u".." : u"ABC123456780042", where);
    answers({"42/", where == u"?" ? "0//..\\evil_s.txt/" : kBeginSigned, "1/a/", kEnd});
    EXPECT_EQ(errorOf([&] { journal->call("eMakeZreport", errorDesc); }), kTypeMismatch);
    EXPECT_EQ(screen.journal.back(), "close");
    EXPECT_TRUE(screen.boxes.empty() && (where != u"?" || files.contents.empty()));
  }
}

TEST_F(Journal, TheEarlierFormSavesTheDayAsOnePair) {
  restart({"ABC123456780042/x/"}, "00/04/00/");
  answers({""}, "51/00/00/"), answers({"42/sign/"}, "00/04/00/");
  answers({"1/short", kBeginText, "1/ a/", kDone, kBeginSigned, "1/b /", kEnd});
  EXPECT_EQ(journal->call("MakeZreport", errorDesc), Value(Long{0}));
  EXPECT_EQ(errorDesc, u"0");
  EXPECT_THAT(device.commands, ElementsAre(")/", "A/", "A/", "Q/", "Q/", "Q/", "Q/", "Q/", "Q/", "Q/"));
  expectSaved({{kDay + "ABC123456780042_a.txt", " ab \r\n"}, {kDay + "ABC123456780042_b.txt", "sign\r\n"}});
  EXPECT_THAT(screen.journal, ElementsAre("show", kText, "+ a 2", kSigned, "+b  4", "close"));
}

TEST_F(Journal, TheJournalBoxTellsTheFolders) {
  moduleState().createObject = [](TextView id) -> ObjectPtr {
    FakeBox::log += toUtf8(id) + " ";
    return std::make_shared<FakeBox>();
  };
  restart();
  for (const char16_t* name : {u"ABC123456780001", u"ABC123456780002"}) savePair(name, u"d", u"s");
  const std::string asked = "quorndll_webupdate.box GetDllPath";
  EXPECT_EQ(std::exchange(FakeBox::log, ""), asked + asked) << "asked anew for every save";
  FakeBox::fails = true;
  EXPECT_EQ(errorOf([&] { savePair(u"ABC123456780001", u"d", u"s"); }), kOverflow);
  savePair(u"ABC123456780001", u"d", u"s");
  EXPECT_EQ(std::exchange(FakeBox::log, ""), "quorndll_webupdate.box " + asked) << "one that failed is not asked again";
  const std::string day = "d:\\ABC12345678\\0001\\j\\ABC12345678\\0001\\";
  EXPECT_TRUE(files.below(day).size() == 2 && files.below("e:\\ABC12345678000").size() == 4);
}

}  // namespace
}  // namespace mirvane::test
