// What the emulator remembers in its file.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>

#include "emulator/program/station.h"

namespace mirvane::emulator {
namespace {

const std::string kReceipt[] = {"3/S//A///1.000/10.00/1/24.00/1/", "4/1/1///1.00/0/0/0/0/0/", "5/1///0.00///", "O/1/"};

class EmulatorState : public testing::Test {
 protected:
  EmulatorState() { start(true); }
  ~EmulatorState() override {
    station.reset();
    std::filesystem::remove_all(folder_);
  }

  std::string path() const { return (folder_ / "state").string(); }
  void start(bool isAnew = false) {
    station.reset();
    std::filesystem::create_directories(folder_);
    station.emplace([](TextView) {});
    station->device.journal().options.padding = 5000;
    station->keepStateIn(path(), isAnew);
  }
  /// Goes on with what the disk holds now, as after a kill.
  void kill() {
    const auto copy = folder_.string() + ".copy";
    std::filesystem::copy(folder_, copy, std::filesystem::copy_options::recursive);
    station.reset();
    std::filesystem::remove_all(folder_);
    std::filesystem::rename(copy, folder_);
    start();
  }
  void sell() {
    for (const std::string& command : kReceipt) run(command);
  }
  std::string run(const std::string& command) { return station->execute(command); }
  /// The day's totals, the open receipt, and the journal with its signatures.
  std::string memory() {
    std::string all;
    for (const char* command : {"0/", "9/", "#/", "Q/"}) all += run(command);
    // While a receipt is open there is nothing to read.
    for (std::string step = "00/"; step.starts_with("00/") && step.find("/3//") != 8; all += step) step = run("Q/");
    return all;
  }
  void change(const std::string& sql) {
    station.reset();
    sqlite3* database = nullptr;
    sqlite3_open(path().c_str(), &database);
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sql;
    sqlite3_close(database);
  }
  /// Why the file is refused; empty when it is not.
  std::string refusal() {
    try {
      start();
      return "";
    } catch (const StateError& error) {
      station.reset();
      return error.what();
    }
  }

  std::optional<Station> station;

 private:
  const std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("mirvane-state-" + std::to_string(millisecondsNow()) + "-" +
                                                testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(EmulatorState, AKillBetweenAnyTwoCommandsChangesNothing) {
  sell();
  for (const std::string& command : kReceipt) {
    run(command);
    const std::string before = memory();
    kill();
    EXPECT_EQ(memory(), before) << command;
  }
  for (int i = 0; i < 3; ++i) run("A/");
  kill();
  EXPECT_EQ(run("A/").substr(0, 3), "00/") << "it is still the closing";
  while (!run("Q/").ends_with("_s.txt/") || !run("Q/").starts_with("00/00/02/3")) continue;
  EXPECT_EQ(run("x/2/2"), "00/00/00/");
  kill();
  EXPECT_EQ(run("x/9/").substr(0, 3), "00/");
  sell();
  EXPECT_NE(memory().find("0002"), std::string::npos) << "the second day's journal";
}

TEST_F(EmulatorState, AnImpossibleValueIsRefusedWithItsPlace) {
  run(kReceipt[0]);
  const std::pair<std::string, std::string> rows[] = {
      {"register/receipt/0/items/0/vat", "5"},
      {"register/receipt/0/items/0/price", "-1"},
      {"register/receipt/0/items", "1000000"},
      {"register/receipt/0/items/0/kind", "3"},
      {"register/departments", "3"},
      {"register/departments/3/category", "0"},
      {"register/header/0/size", "9"},
      {"register/vatRates/2", "'six'"},
      {"register/serialNumber", "'../../etc'"},
      {"register/isDayOpen", "2"},
      {"register/day/receipts", "9999999999"},
      {"register/day/gross/0", "9223372036854775807"},
      {"journal/receiptStart", "99999"},
      {"cards/failure", "-1"},
      {"lines", "1.5"},
  };
  for (const auto& [name, value] : rows) {
    change(std::string("CREATE TEMP TABLE kept AS SELECT * FROM memory; UPDATE memory SET value = ")
               .append(value)
               .append(" WHERE name = '")
               .append(name)
               .append("'"));
    const std::string told = refusal();
    EXPECT_NE(told.find(name.substr(0, name.find("/receiptStart"))), std::string::npos) << name << ": " << told;
    start(true);
    run(kReceipt[0]);
  }
}

TEST_F(EmulatorState, AFileThatIsCutOrForeignOrTakenIsRefused) {
  for (int i = 0; i < 50; ++i) sell();
  EXPECT_NE(([&] {
              Station second([](TextView) {});
              try {
                second.keepStateIn(path(), false);
              } catch (const StateError& error) {
                return std::string(error.what());
              }
              return std::string();
            })()
                .find("another program"),
            std::string::npos);
  station.reset();
  for (auto size = std::filesystem::file_size(path()); size > 5000; size = size * 3 / 4) {
    std::filesystem::resize_file(path(), size - 1);
    EXPECT_NE(refusal(), "") << size;
  }
  std::ofstream(path()) << "{ \"format\": 1 }";
  EXPECT_NE(refusal().find("not the state of a register"), std::string::npos);
}

}  // namespace
}  // namespace mirvane::emulator
