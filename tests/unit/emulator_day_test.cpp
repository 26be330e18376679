#include <gtest/gtest.h>

#include <map>

#include "emulator/device.h"
#include "tests/fakes/strings.h"
#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

const std::string kDaySale = "3/S//A///1.000/10.00/2/24.00/2/";

class EmulatorDay : public testing::Test {
 protected:
  /// Carries out commands separated by "|"; each succeeds, or is refused with the code that stands behind a blank.
  void run(const std::string& rows) {
    for (const std::string& row : split(rows, '|')) {
      const bool isRefused = row.size() > 4 && row[row.size() - 3] == ' ';
      const std::string command = toCodePage(fromUtf8(row.substr(0, row.size() - (isRefused ? 3 : 0))));
      EXPECT_EQ(device.execute(command).substr(0, 2), isRefused ? row.substr(row.size() - 2) : "00") << row;
    }
  }
  std::string fields(const std::string& command) {
    const std::string reply = device.execute(command);
    EXPECT_EQ(reply.substr(0, 3), "00/") << command;
    return toUtf8(fromCodePage(reply.substr(9)));
  }
  /// Reads what is prepared to its end, and the states of its steps into `states`, pieces in a row as a single "1".
  std::map<std::string, std::string> readJournal() {
    std::map<std::string, std::string> files;
    EXPECT_EQ(device.execute("Q/").size(), 9U);
    for (states.clear(); !states.ends_with('3');) {
      const auto step = split(device.execute("Q/").substr(9), '/');
      if (step.size() != 3) return ADD_FAILURE(), files;
      if (step[0] != "1" || !states.ends_with('1')) states += step[0];
      files[step[2].substr(15)] += step[1];
      EXPECT_LE(step[1].size(), device.journal().options.pieceSize);
      EXPECT_EQ(step[2].substr(0, 15), "MVE250000170001");
    }
    return files;
  }

  std::string paper, states;
  Device device{[this](TextView line) { paper += toCodePage(line) + "\r\n"; }};
};

TEST_F(EmulatorDay, TheJournalIsThePaperInPieces) {
  run(kDaySale + "|5/1///0.00///|O/1/|" + kDaySale + "|O/2/|6/0/5.00//|O/1/|P/ΣΗΜΕΙΩΣΗ/1/|x/1/|" + kDaySale +
      "|5/2///10.00///|O/1/");
  for (const std::size_t size : {1000U, 1U, 997U, 60000U}) {
    device.journal().options.pieceSize = size;
    EXPECT_EQ(fields("#/"), "0/");
    const auto files = readJournal();
    EXPECT_EQ(states, "012012013") << size;
    EXPECT_EQ(files.at("_a.txt"), paper);
    EXPECT_EQ(split(files.at("_b.txt"), '\n').size(), 2U);
    EXPECT_NE(files.at("_s.txt").find(toCodePage(u"20,00")), std::string::npos);
    EXPECT_EQ(device.execute("Q/").substr(9, 1), "3");
  }
  run("A/ 51|A/ 51");
  const std::string closing = fields("A/");
  EXPECT_TRUE(closing.starts_with("0001/") && closing.find_first_not_of("0123456789ABCDEF", 5) == 45) << closing;
  const auto files = readJournal();
  EXPECT_EQ(files.at("_a.txt"), paper);
  EXPECT_EQ(fields("A/"), closing);
  run("Q/|Q/|Q/|#/");
  EXPECT_EQ(readJournal(), files);
}

TEST_F(EmulatorDay, APaddedJournalIsTheSameInPiecesOfAnySize) {
  run(kDaySale + "|O/2/");
  for (const std::size_t more : {1U, 2U, 3U, 50U, 51U, 52U, 53U, 101U, 102U, 1234U}) {
    device.journal().options.padding = paper.size() + more;
    std::string whole;
    for (const std::size_t size : {60000U, 1U, 7U}) {
      device.journal().options.pieceSize = size;
      fields("#/");
      const std::string text = readJournal().at("_a.txt");
      EXPECT_EQ(text.size(), paper.size() + (more > 1 ? more : 0)) << size;
      EXPECT_TRUE(text.ends_with("\r\n") && (whole.empty() || whole == text)) << size << " of " << more;
      whole = text;
    }
  }
}

TEST_F(EmulatorDay, StepsComeInTheirOrder) {
  const std::string b = "b/24.00/13.00/6.00/36.00/1.00/", vatNumber = "B/////////123456789//////////";
  run("Q/ 3A|x/9/ 0D|x/2/2 3D|x/1/|" + kDaySale + "|A/ 41|#/ 41|x/1/ 41|x/9/ 41|Y/1/a/1//1// 41|" + b + " 41|" +
      vatNumber + " 41|5/1///0.00///|4/1/2///1.00/0/0/0/0/0/ 45|O/1/|" + b + " 0A|" + vatNumber +
      " 0A|H/1/a/1//1//1//1// 0A|6/0/5.00//|A/ 43|O/1/|#/|x/2/2 3D");
  readJournal();
  // A sale between the calls that prepare a closing still belongs to the day.
  run("x/2/2 3D|A/ 51|" + kDaySale + "|A/ 41|5/1///0.00///|O/1/|A/ 51|A/|" + kDaySale +
      " 15|6/0/5.00// 15|x/1/ 15|P/a/1/ 15|x/2/2 3D|x/9/ 3D");
  EXPECT_EQ(readJournal().at("_a.txt"), paper);
  EXPECT_EQ(device.execute("x/2/2", kPrinterPaperEnd), "19/04/02/");
  EXPECT_EQ(device.execute("0/").substr(6, 8), "02/20.00");
  paper.clear();
  EXPECT_EQ(device.execute("x/2/2"), "00/00/00/");
  const std::string report = paper;
  run("x/2/2 3D|Q/ 3A|" + b + "|" + vatNumber + "|x/9/");
  EXPECT_TRUE(paper.ends_with(report));
  EXPECT_EQ(fields("e/"), "24.00/13.00/6.00/36.00/1.00/");
  device.journal().options.keep = [](const Journal::File&) { return false; };
  run("A/ 51|A/ 51|A/ 86|" + kDaySale);
}

TEST_F(EmulatorDay, ARefusedCommandChangesNothing) {
  const auto all = [this] { return fields("h/") + fields("{/") + fields("e/") + fields("s/") + fields(",/0/"); };
  const std::string before = all(), key(65, 'a'), line(49, 'x'), url(201, 'u');
  run("H/1//1//1//1//1/ 01|H/1//1//1/ /1//1// 7E|H/0/a/1//1//1//1// 05|H/5/a/1//1//1//1// 05|Y/1/a/1//7// 05|Y/1/" +
      line + "/1//1// 02|m/a/b 01|m/a/b/c/ 01|b/100.00/1/2/3/4/ 05|b/-1/1/2/3/4/ 05|b/1/2/3/4/1.00/ 4E|m/a/b/" + line +
      " 02|d/41/A/1/ 55|d/0/A/1/ 55|d/1/ /1/ 6B|d/1/A/21/ 54|K/21/A/ 54|K/20// 6B|D/41/ 55|k/0/ 54|"
      "S/1/123456789//0/0/0/0/0/0/0/0/0/ 02|S/1///0/0/0/2/0/0/0/0/0/ 05|S/-1///0/0/0/0/0/0/0/0/0/ 05|"
      "B/////////12345678////////// 78|B/////////1234567890////////// 78|B/1////////123456789////////// 02|"
      "]/1/u/1//////q/ 01|]/2/u/1/////q/ 05|]/1/u//////q/ 03|]/1/u/0/////q/ 05|]/1/u/65536/////q/ 05|]/1/u/1/" +
      key + "////q/ 88|]/1/" + url + "/1/////q/ 02|,/2/ 05|x/2/1 05|x/2/2/ 01|x/3/ 05|x/1 01|7/3/a/ 05");
  EXPECT_EQ(all(), before);
}

TEST_F(EmulatorDay, StatesOfTheMachineAreRefusedWithTheirCodes) {
  const std::pair<bool Conditions::*, std::string> rows[] = {
      {&Conditions::clockLost, "23"}, {&Conditions::batteryFault, "20"}, {&Conditions::memoryFull, "1D"}};
  const auto goesOnAndBeginsNothing = [this](const std::string& code) {
    run(kDaySale + "|5/1///0.00///|O/1/|" + kDaySale + " " + code + "|6/0/1.00// " + code + "|A/ " + code + "|x/1/");
  };
  for (const auto& [condition, code] : rows) {
    run(kDaySale);
    device.conditions().*condition = true;
    goesOnAndBeginsNothing(code);
    device.conditions() = {};
  }
  device.conditions().cutterError = true;
  run("p/2/1/ 57|p/1/");
  device.conditions() = {};
  device.conditions().drawerLimit = true;
  run("6/1/60.01// 7D|6/1/60.00//|O/1/|6/1/0.01// 7D");
}

TEST(EmulatorClock, TwentyFourHoursAfterTheFirstDocumentItWantsAZ) {
  platform::LocalTime now{2026, 2, 28, 9, 30, 0};
  Device device({}, [&now] { return now; });
  device.conditions().dailyZ = true;
  const auto sell = [&device] { return device.execute(kDaySale).substr(0, 2); };
  EXPECT_EQ(sell(), "00");
  device.execute("O/2/");
  now = {2026, 3, 1, 9, 29, 59};
  EXPECT_EQ(sell(), "00");
  now = {2026, 3, 1, 9, 30, 0};
  EXPECT_EQ(sell(), "00") << "a receipt that is open goes on";
  device.execute("O/2/");
  EXPECT_EQ(sell(), "14");
  for (const char* command : {"A/", "A/", "A/"}) device.execute(command);
  while (device.execute("Q/").substr(8, 2) != "/3") continue;
  EXPECT_EQ(device.execute("x/2/2").substr(0, 2), "00");
  EXPECT_EQ(sell(), "00");
}

TEST_F(EmulatorDay, WhatIsSetIsToldAndTakesEffect) {
  const std::string server = "1/http:~~a.gr~x.php/443/" + std::string(64, 'F') + "////q~r/";
  run("H/3/ΝΕΟ/1//2/Β/1//1//|Y/1/ΤΕΛΟΣ/1//4/ΓΕΙΑ/|d/2/ΨΩΜΙ/7/|K/7/ΤΡΟΦΙΜΑ/|B/////////123456789//////////|]/" + server +
      "|,/1/|m/ΔΩΡΟ//ΣΗΜΕΡΑ");
  EXPECT_EQ(fields("h/") + fields("{/"), "3/ΝΕΟ/1//2/Β/1//1//1/ΤΕΛΟΣ/1//4/ΓΕΙΑ/");
  EXPECT_EQ(fields("D/2/") + fields("k/7/") + fields(",/0/"), "ΨΩΜΙ/2/7/0.00/0/ΤΡΟΦΙΜΑ/0.00/0/" + server);
  // Settings, and which of these the next receipt then shows.
  const TextView marks[] = {u"Ν Ε Ο", u"ΑΦΜ 123456789", u"ΔΩΡΟ", u"ΤΕΛΟΣ", u"ΚΑΘΑΡΗ", u"8<", u"ΜΑΡΙΑ"};
  const std::tuple<std::string, std::string, int> cases[] = {{"S/1/A//0/0/0/1/1/0/0/0/1/", "1110100", 0},
                                                             {"S/1/A//0/0/0/1/1/0/0/0/1/", "1101100", 0},
                                                             {"S/2/A/ΜΑΡΙΑ/0/1/0/0/1/0/0/1/1/", "1101011", 1},
                                                             {"S/2/A//0/1/0/1/0/3/0/0/0/", "1100100", 2}};
  for (const auto& [settings, shown, openings] : cases) {
    paper.clear();
    run(settings);
    run(kDaySale);
    run("5/1///0.00///|O/1/");
    run("7/1/" + shown + "/");
    std::string found;
    for (const TextView mark : marks) found += paper.find(toCodePage(mark)) == std::string::npos ? '0' : '1';
    EXPECT_EQ(found, shown) << settings;
    EXPECT_EQ(device.drawerOpenings(), openings);
  }
  EXPECT_EQ(fields("s/"), "2/A//1/1/0/3/0/0/");
  EXPECT_EQ(device.display()[0], u"1101011") << "the display was switched off before the last text";
}

TEST_F(EmulatorDay, AdjustmentsKeepToTheReceipt) {
  run("4/1/2///1.00/0/0/0/0/0/ 40|" + kDaySale +
      "|3/S//B///1.000/5.00/1/13.00/1/|4/5/1///1.00/0/0/0/0/0/ 61|"
      "4/1/1///0.00/0/0/0/0/0/ 46|4/1/1///-1.00/0/0/0/0/0/ 05|4/1/2///1.00/0/0/0/0/0/ 62|4/1/1///5.01/0/0/0/0/0/ 6A|"
      "4/1/1///1.00/1.00/0/0/0/0/ 49|4/2/1///1.00/0.50/0.49/0/0/0/ 49|4/2/1///1.00/2.00/-1.00/0/0/0/ 05|"
      "4/2/2///1.00/1.00/0/0/0/0/ 62|4/2/1///5.01/0/5.01/0/0/0/ 47|4/2/1///15.01/10.00/5.01/0/0/0/ 48|"
      "4/4/1///999999.00/999999.00/0/0/0/0/ 74|4/1/1///3.00/0/0/0/0/0/|4/1/1///2.01/0/0/0/0/0/ 6A|"
      "4/3/1///1.00/0/0/0/0/0/|4/2/1///2.00/0.50/1.50/0/0/0/|4/1/1///2.00/0/0/0/0/0/ 47|"
      "3/V//A///1.000/10.00/2/24.00/3/ 7C|3/V//A///0.900/10.00/2/24.00/3/|4/3/2///1.00/0/0/0/0/0/ 62");
  EXPECT_EQ(fields("9/"), "0.50/1.50/0.00/0.00/0.00/1/2.00/");
}

}  // namespace
}  // namespace mirvane::emulator
