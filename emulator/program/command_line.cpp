#include "emulator/program/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>

#include "emulator/program/station.h"
#include "http/machine.h"
#include "version.h"

namespace mirvane::emulator {
namespace {

constexpr const char* kAbout =
    "A fiscal cash register for development and tests. Without options it listens at 127.0.0.1:9100 (UDP);\n"
    "its page is at http://127.0.0.1:8100/. When it is listening it prints one line: ready and its addresses.";

/// Tells whether the folder's new file holds all of `file`.
bool keepJournal(const std::string& folder, const Journal::File& file) {
  std::ofstream output(pathOf(folder) / file.name, std::ios::binary);
  output << file.bytes << std::flush;
  return output.good();
}

/// A folder that takes no file is told now, not at the day's closing.
void requireWritable(const std::string& folder) {
  const Journal::File probe{".mirvane-emulator", ""};
  if (!keepJournal(folder, probe)) throw UsageError("--journal " + folder + ": cannot write files there");
  std::filesystem::remove(pathOf(folder) / probe.name);
}

std::size_t parseSize(const std::string& option, const std::string& text, std::size_t least, std::size_t most) {
  std::size_t size = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), size);
  if (error != std::errc() || end != text.data() + text.size() || size < least || size > most) {
    throw UsageError(option + " takes " + std::to_string(least) + " to " + std::to_string(most) + ", not " + text);
  }
  return size;
}

void addOutcome(CardPayments::Options& cards, std::string_view text) {
  constexpr std::string_view kAlways = "always ";
  const bool isForAll = text.starts_with(kAlways);
  if (isForAll) text.remove_prefix(kAlways.size());
  for (const Code code : {Code::kOk, Code::kNoChange, Code::kCardFailed, Code::kCardNotRead, Code::kTerminalInactive}) {
    if (text != std::to_string(static_cast<int>(code))) continue;
    if (isForAll) {
      cards.otherwise = code;
    } else {
      cards.next.push_back(code);
    }
    return;
  }
  throw UsageError("--card takes 0, 112, 156, 157 or 159, not " + std::string(text));
}

void addScript(Faults& faults, const std::string& path) {
  std::ifstream file(pathOf(path), std::ios::binary);
  if (!file) throw UsageError(path + ": cannot be read");
  try {
    faults.addScript(std::string(std::istreambuf_iterator<char>(file), {}));
  } catch (const FaultError& error) {
    throw UsageError(path + ": " + error.what());
  }
}

/// The command line, followed option by option in the order in which they stand there.
class CommandLine {
 public:
  CommandLine(Options& options, Faults& faults) : app_(kAbout, "mirvane-emulator") {
    app_.set_version_flag("--version", "mirvane-emulator " MIRVANE_VERSION);
    const auto address = [&options](const std::string& kind) {
      return [&options, kind](const std::string& text) { options.addresses.push_back({kind, text}); };
    };
    value("--udp", "[ADDRESS:]PORT", "the network; default 127.0.0.1, port 0 lets the system choose", address("udp"));
    value("--serial", "PORT", "a serial port of this machine: COM6, /dev/ttyUSB0", address("serial"));
    value("--pty", "[LINK]", "a pseudo-terminal, with a symbolic link to it (not on Windows)", address("pty"))
        ->expected(0, 1);
    value("--web", "[ADDRESS:]PORT", "the page and the HTTP interface; default 127.0.0.1:8100",
          [&options](const std::string& text) { options.webAddress = text.empty() ? "8100" : text; })
        ->expected(0, 1);
    value("--web-host", "NAME", "also serve --web under this host name; may be repeated",
          [&options](const std::string& name) { options.web.hosts.push_back(name); });
    value("--log", "FILE", "append every event to FILE, one line of JSON each",
          [&options](const std::string& path) { options.web.log = path; });
    value("--acknowledge", "WHAT",
          "what to acknowledge on the network: \"frame\" (default) or \"enq\", the ENQ before it",
          [&options](const std::string& what) {
            if (what != "frame" && what != "enq") throw UsageError("--acknowledge takes frame or enq, not " + what);
            options.acknowledges = what == "enq" ? Line::Acknowledges::kEnq : Line::Acknowledges::kFrame;
          });
    value("--paper", "FILE", "append what is printed to FILE", [&options](const std::string& path) {
      options.paper = std::ofstream(pathOf(path), std::ios::binary | std::ios::app);
      if (!options.paper) throw UsageError(path + ": cannot be written");
    });
    flag("--quiet", "do not copy the paper to standard output", options.isQuiet);
    flag("--paced", "take as long as a line of 115200 bits per second", options.isPaced);
    value("--script", "FILE", "apply the fault rules in FILE",
          [&faults](const std::string& path) { addScript(faults, path); });
    value("--fault", "RULE", "add a fault rule: --fault \"on 5/ lost\", --fault \"after 2 on 3/S unplug 5\"",
          [&faults](const std::string& rule) { faults.add(rule); });
    value("--seed", "NUMBER", "selects the commands that rules with a rate hit (default 1)",
          [&faults](const std::string& text) {
            faults.seed(static_cast<std::uint32_t>(parseSize("--seed", text, 0, 4'294'967'295)));
          });
    value("--card-seconds", "SECONDS", "seconds a card payment takes (default 2)", [&options](const std::string& text) {
      options.cards.seconds = static_cast<double>(parseSize("--card-seconds", text, 0, 3600));
    });
    value("--card", "OUTCOME",
          "how the next card payment ends: 0 (approved), 112, 156, 157 or 159; may be repeated for the following "
          "payments; "
          "\"always OUTCOME\" for all others",
          [&options](const std::string& text) { addOutcome(options.cards, text); });
    value("--journal", "FOLDER", "save the journal files of each closing in FOLDER",
          [&options](const std::string& folder) {
            requireWritable(folder);
            options.journal.keep = [folder](const Journal::File& file) { return keepJournal(folder, file); };
          });
    // With its frame, a piece must fit a datagram.
    value("--journal-piece", "BYTES", "size of the pieces of the journal (default 1000, at most 60000)",
          [&options](const std::string& text) {
            options.journal.pieceSize = parseSize("--journal-piece", text, 1, 60'000);
          });
    value("--pad-journal", "BYTES", "pad the printed text of the journal to this size",
          [&options](const std::string& text) {
            options.journal.padding = parseSize("--pad-journal", text, 0, 1'000'000'000);
          });
    value("--replay", "FILE", "replay the register's side of a flight record, and report where the till differs",
          [&options](const std::string& path) { options.replay = path; });
    value("--state", "FILE", "keep the state in FILE across restarts",
          [&options](const std::string& path) { options.state = path; });
    flag("--reset", "start with an empty --state file", options.isReset);
    value("--preset", "NAME", "start as a \"fresh\" register, a \"kiosk\" or a \"restaurant\"",
          [&options](const std::string& name) { options.preset = name; });
    value("--serial-number", "NUMBER", "serial number of the register: letters and digits",
          [&options](const std::string& number) {
            if (!isSerialNumber(number)) throw UsageError("--serial-number takes letters and digits, not " + number);
            options.serialNumber = number;
          });
  }

  /// Nothing when the program is to go on, otherwise what it ends with. Throws what the options throw.
  std::optional<int> follow(std::vector<std::string> arguments) {
    try {
      std::reverse(arguments.begin(), arguments.end());
      app_.parse(std::move(arguments));
    } catch (const CLI::Success& success) {
      return app_.exit(success);
    } catch (const CLI::ParseError& error) {
      throw UsageError(error.what());
    }
    std::map<const CLI::Option*, std::size_t> seen;
    for (const CLI::Option* option : app_.parse_order()) {
      const auto handler = handlers_.find(option);
      if (handler != handlers_.end()) handler->second(option->results().at(seen[option]++));
    }
    return std::nullopt;
  }

 private:
  CLI::Option* value(const std::string& name, const std::string& type, const std::string& help,
                     std::function<void(const std::string&)> handler) {
    CLI::Option* option = app_.add_option(name, texts_, help);
    option->type_name(type)->allow_extra_args(false)->take_all();
    handlers_[option] = std::move(handler);
    return option;
  }
  void flag(const std::string& name, const std::string& help, bool& target) { app_.add_flag(name, target, help); }

  CLI::App app_;
  std::vector<std::string> texts_;
  std::map<const CLI::Option*, std::function<void(const std::string&)>> handlers_;
};

}  // namespace

std::optional<int> follow(std::vector<std::string> arguments, Options& options, Faults& faults) {
  return CommandLine(options, faults).follow(std::move(arguments));
}

}  // namespace mirvane::emulator
