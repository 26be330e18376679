// Writes all that is known of each result, from docs/result_codes.txt and from what the component itself does about it:
// the page, or, into a file whose name ends in .json, what programs read.
//
//   describe-result-codes FILE

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "protocol/device_codes.h"
#include "tools/result_codes.h"

namespace {

using namespace mirvane;

constexpr std::string_view kIntroduction =
    R"(<!-- Made by describe-result-codes (./run docs) from docs/result_codes.txt and the code. Not to be edited. -->

# Result codes

What `Result` means after a call, and what to do. Find the number in the list, or search this page for the text on the
screen. For how a till should react see [handle errors](handle-errors.md). For programs, the release has the same as
`docs/result-codes.json`.

**May the call be repeated?** "yes": nothing was done; repeat the call once the cause is fixed. "yes, later": nothing was
done; repeat the call once the obstacle is gone. "no": it would be done twice, or is being done already. "ask first": ask
the register what it has done, with `printerStatusRead` and `StatusRead`, and with `transactionTotals` while a receipt is
open. `Payment`, `executeCashIn` and `executeCashOut` send several commands, of which the first may be done: after these,
ask first, whatever the code.

In the last column, "waited for" means that the call waits, and shows a window, until the register has ended the state;
"sent again" that the component then sends the command again; "critical" that the till cannot continue without help, often
a technician's.

The texts of the register's codes are its own, as they appear in `Exresult` and in message boxes. For many codes only the
text is known; the page says so. For a code that is not listed here, `Exresult` is the register's reply as it came.
)";

constexpr std::string_view kJsonNote =
    "Made by describe-result-codes from docs/result_codes.txt and the code. 1 and 100 have two meanings: look at "
    "origin.";

std::string hexDigits(int code) {
  std::ostringstream text;
  text << std::uppercase << std::hex << std::setw(2) << std::setfill('0') << code;
  return text.str();
}

std::string title(const ResultCode& code) {
  return std::to_string(code.result) + (code.name.empty() ? "" : " " + code.name);
}

/// What the component itself does about a result, and what it means for the till.
std::string classification(const ResultCode& code) {
  std::string text;
  const auto add = [&text](std::string_view word) { text.append(text.empty() ? "" : ", ").append(word); };
  if (endsByItself(code.result)) add("waited for");
  if (mayBeSentAgain(code.result)) add("sent again");
  if (isCritical(code.result)) add("critical");
  return text;
}

/// As the address of a heading: letters, digits and hyphens, blanks as hyphens.
std::string anchor(const ResultCode& code) {
  std::string text = title(code);
  std::replace(text.begin(), text.end(), ' ', '-');
  return text;
}

void writeList(std::ostream& page, bool devices) {
  page << "| `Result` |" << (devices ? " in the trace |" : "") << " text | again? | |\n"
       << (devices ? "|---" : "") << "|---|---|---|---|\n";
  for (const ResultCode& code : resultCodes()) {
    if (code.isDevices != devices) continue;
    page << "| [" << code.result << "](#" << anchor(code) << ") | " << (devices ? hexDigits(code.result) + " | " : "")
         << code.text << " | " << wordFor(code.repeating) << " | " << classification(code) << " |\n";
  }
}

void writeExplanations(std::ostream& page, bool devices) {
  for (const ResultCode& code : resultCodes()) {
    if (code.isDevices != devices) continue;
    const bool isTextAlone = code.knowledge == Knowledge::kTextAlone;
    page << "\n### " << title(code) << "\n\n";
    if (!code.text.empty()) page << "\"" << code.text << "\"\n\n";
    page << code.meaning.en << (isTextAlone ? " *This is what its text says; more is not known.*" : "") << "\\\n"
         << code.meaning.el << (isTextAlone ? " *Αυτό λέει το κείμενό του· άλλο δεν είναι γνωστό.*" : "") << "\n\n"
         << "- **Cashier:** " << code.cashier.en << "\n"
         << "- **Ταμίας:** " << code.cashier.el << "\n"
         << "- **Programmer:** " << code.programmer << "\n"
         << "- **Again?** " << wordFor(code.repeating) << "\n";
  }
}

void writePage(std::ostream& page) {
  page << kIntroduction;
  for (const bool devices : {false, true}) {
    page << (devices ? "\n## The register's\n\n" : "\n## The component's own\n\n");
    writeList(page, devices);
    writeExplanations(page, devices);
  }
}

nlohmann::ordered_json toJson(const Bilingual& text) { return {{"en", text.en}, {"el", text.el}}; }

nlohmann::ordered_json toJson(const ResultCode& code) {
  constexpr std::array kKnown = {"meaning", "text", "nothing"};
  constexpr std::array kRepeat = {"yes", "no", "ask", "later"};
  nlohmann::ordered_json json = {{"result", code.result}, {"origin", code.isDevices ? "register" : "component"}};
  if (!code.name.empty()) json["name"] = code.name;
  if (code.isDevices) json["hex"] = hexDigits(code.result);
  if (!code.text.empty()) json["text"] = code.text;
  json["known"] = kKnown[static_cast<std::size_t>(code.knowledge)];
  json["meaning"] = toJson(code.meaning);
  json["cashier"] = toJson(code.cashier);
  json["programmer"] = {{"en", code.programmer}};
  json["repeat"] = kRepeat[static_cast<std::size_t>(code.repeating)];
  json["waitedFor"] = endsByItself(code.result);
  json["sentAgain"] = mayBeSentAgain(code.result);
  json["critical"] = isCritical(code.result);
  return json;
}

void writeJson(std::ostream& file) {
  nlohmann::ordered_json codes = nlohmann::ordered_json::array();
  for (const ResultCode& code : resultCodes()) codes.push_back(toJson(code));
  file << nlohmann::ordered_json{{"note", kJsonNote}, {"codes", codes}}.dump(1) << "\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: describe-result-codes FILE\n";
    return 2;
  }
  try {
    const std::filesystem::path name = argv[1];
    std::ofstream file(name, std::ios::binary);
    name.extension() == ".json" ? writeJson(file) : writePage(file);
    file.close();
    if (!file) throw std::runtime_error("cannot write " + name.string());
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
  return 0;
}
