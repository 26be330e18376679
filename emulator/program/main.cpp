#include <CLI/CLI.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <charconv>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "emulator/program/player.h"
#include "emulator/program/station.h"
#include "emulator/program/system.h"
#include "emulator/program/transport.h"
#include "emulator/program/web_server.h"
#include "version.h"

namespace mirvane::emulator {
namespace {

constexpr const char* kAbout =
    "A fiscal cash register to develop and test against. Without options it listens at 127.0.0.1:9100 (UDP) and shows\n"
    "itself at http://127.0.0.1:8100/. When it listens it prints one line: ready, and the addresses.";

/// The command line cannot be followed.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Options {
  struct Address {
    std::string kind, text;
  };
  std::vector<Address> addresses;
  std::optional<std::string> web;
  std::ofstream paper;
  bool isQuiet = false;
  bool isPaced = false;
  Line::Acknowledges acknowledges = Line::Acknowledges::kFrame;
  Journal::Options journal;
  CardPayments::Options cards;
  std::string state, serialNumber, replay, preset = "fresh";
  bool isReset = false;
};

/// Tells whether the folder's new file holds all of `file`.
bool keepJournal(const std::string& folder, const Journal::File& file) {
  std::ofstream output(pathOf(folder) / file.name, std::ios::binary);
  output << file.bytes << std::flush;
  return output.good();
}

/// A folder that takes no file is told now, not at the day's closing.
void requireWritable(const std::string& folder) {
  const Journal::File probe{".mirvane-emulator", ""};
  if (!keepJournal(folder, probe)) throw UsageError("--journal " + folder + ": no file can be written there");
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
    value("--udp", "[ADDRESS:]PORT", "the network; 127.0.0.1 unless told otherwise, port 0 lets the system choose",
          address("udp"));
    value("--serial", "PORT", "a serial port of this machine: COM6, /dev/ttyUSB0", address("serial"));
    value("--pty", "[LINK]", "a pseudo-terminal, with a symbolic link to it (not on Windows)", address("pty"))
        ->expected(0, 1);
    value("--web", "[ADDRESS:]PORT", "the page and the interface for tests; 8100 unless told otherwise",
          [&options](const std::string& text) { options.web = text.empty() ? "8100" : text; })
        ->expected(0, 1);
    value("--acknowledge", "WHAT", "the network: \"frame\" (each frame gets its ACK) or \"enq\" (the ENQ ahead of it)",
          [&options](const std::string& what) {
            if (what != "frame" && what != "enq") throw UsageError("--acknowledge takes frame or enq, not " + what);
            options.acknowledges = what == "enq" ? Line::Acknowledges::kEnq : Line::Acknowledges::kFrame;
          });
    value("--paper", "FILE", "append what is printed to FILE", [&options](const std::string& path) {
      options.paper = std::ofstream(pathOf(path), std::ios::binary | std::ios::app);
      if (!options.paper) throw UsageError(path + ": cannot be written");
    });
    flag("--quiet", "do not show what is printed", options.isQuiet);
    flag("--paced", "take the time that a line of 115200 bits per second takes", options.isPaced);
    value("--script", "FILE", "misbehave as the rules in FILE tell",
          [&faults](const std::string& path) { addScript(faults, path); });
    value("--fault", "RULE", "misbehave as RULE tells: --fault \"on 5/ lost\", --fault \"after 2 on 3/S unplug 5\"",
          [&faults](const std::string& rule) { faults.add(rule); });
    value("--seed", "NUMBER", "which commands the rules with a rate strike: the same number, the same ones (1)",
          [&faults](const std::string& text) {
            faults.seed(static_cast<std::uint32_t>(parseSize("--seed", text, 0, 4'294'967'295)));
          });
    value("--card-seconds", "SECONDS", "a card terminal takes so long (2)", [&options](const std::string& text) {
      options.cards.seconds = static_cast<double>(parseSize("--card-seconds", text, 0, 3600));
    });
    value("--card", "OUTCOME",
          "how the next card payment ends: 0 (approved), 112, 156, 157 or 159; given again, the one after it; "
          "\"always OUTCOME\" for all others",
          [&options](const std::string& text) { addOutcome(options.cards, text); });
    value("--journal", "FOLDER", "keep the files of each closing's journal in FOLDER",
          [&options](const std::string& folder) {
            requireWritable(folder);
            options.journal.keep = [folder](const Journal::File& file) { return keepJournal(folder, file); };
          });
    // With its frame, a piece must fit a datagram.
    value("--journal-piece", "BYTES", "hand the journal over in pieces of so many bytes (1000), at most 60000",
          [&options](const std::string& text) {
            options.journal.pieceSize = parseSize("--journal-piece", text, 1, 60'000);
          });
    value("--pad-journal", "BYTES", "fill the journal's printed text up to so many bytes",
          [&options](const std::string& text) {
            options.journal.padding = parseSize("--pad-journal", text, 0, 1'000'000'000);
          });
    value("--replay", "FILE", "play the register's part out of a flight record, and tell where the till does otherwise",
          [&options](const std::string& path) { options.replay = path; });
    value("--state", "FILE", "remember everything in FILE, and go on where it ends",
          [&options](const std::string& path) { options.state = path; });
    flag("--reset", "forget what --state remembers", options.isReset);
    value("--preset", "NAME", "begin as a \"fresh\" register, a \"kiosk\" or a \"restaurant\"",
          [&options](const std::string& name) { options.preset = name; });
    value("--serial-number", "NUMBER", "of the register: letters and digits", [&options](const std::string& number) {
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

/// Books card payments when their terminal has decided, and not only when the next command comes.
class CardTimer {
 public:
  CardTimer(boost::asio::io_context& loop, Station& station) : station_(station), timer_(loop) { wait(); }

 private:
  void wait() {
    timer_.expires_after(std::chrono::milliseconds(200));
    timer_.async_wait([this](const boost::system::error_code& error) {
      if (error) return;
      if (station_.device.cards().isUnderWay()) {
        station_.device.settleCard();
        if (!station_.device.cards().isUnderWay()) station_.changed();
      }
      wait();
    });
  }

  Station& station_;
  boost::asio::steady_timer timer_;
};

std::unique_ptr<Transport> open(const Options::Address& address, const Wiring& wiring) {
  if (address.kind == "udp") return openUdp(address.text, wiring);
  return address.kind == "pty" ? openPty(address.text, wiring) : openSerial(address.text, wiring);
}

/// All the ways to the register that were asked for.
struct Listening {
  using Connect = std::function<std::unique_ptr<Receiver>(const Options::Address&, Outlet&)>;

  Listening(const Options& options, boost::asio::io_context& loop, const Connect& connect) {
    for (const Options::Address& address : options.addresses) {
      const auto toThis = [&connect, &address](Outlet& outlet) { return connect(address, outlet); };
      transports.push_back(open(address, {loop, options.isPaced, toThis}));
      ready += " " + transports.back()->address();
    }
  }

  std::vector<std::unique_ptr<Transport>> transports;
  std::string ready = "ready";
};

/// Plays a record in place of the register, and returns the exit code.
int play(const Options& options, boost::asio::io_context& loop) {
  if (options.web || !options.state.empty()) throw UsageError("--replay goes with neither --web nor --state");
  std::ifstream file(pathOf(options.replay), std::ios::binary);
  if (!file) throw UsageError(options.replay + ": cannot be read");
  try {
    Player player(loop, std::string(std::istreambuf_iterator<char>(file), {}));
    const Listening listening(options, loop,
                              [&player](const Options::Address&, Outlet& outlet) { return player.connect(outlet); });
    std::cout << listening.ready << std::endl;
    loop.run();
    // What the till had sent when a signal came counts, though it may still be on its way.
    loop.restart();
    loop.run_for(std::chrono::milliseconds(100));
    return player.tell(options.isQuiet);
  } catch (const ReplayError& error) {
    throw UsageError(options.replay + ": " + error.what());
  }
}

int run(const std::vector<std::string>& arguments) {
  Options options;
  Station station([&options](TextView line) {
    const std::string text = toUtf8(line) + "\n";
    if (!options.isQuiet) std::cout << text << std::flush;
    if (options.paper.is_open()) options.paper << text << std::flush;
  });
  CommandLine commandLine(options, station.faults);
  if (const auto status = commandLine.follow(arguments)) return *status;
  if (options.addresses.empty()) {
    options.addresses.push_back({"udp", "9100"});
    if (!options.web && options.replay.empty()) options.web = "8100";
  }

  boost::asio::io_context loop(1);
  boost::asio::signal_set signals(loop, SIGINT, SIGTERM);
  signals.async_wait([&loop](const boost::system::error_code&, int) { loop.stop(); });
  if (!options.replay.empty()) return play(options, loop);

  Faults given = station.faults;
  station.cardDefaults = options.cards;
  if (!station.reset(options.preset)) {
    throw UsageError("--preset takes fresh, kiosk or restaurant, not " + options.preset);
  }
  station.faults = std::move(given);
  station.device.journal().options = options.journal;

  std::map<std::string, int> ofKind;
  const Listening listening(options, loop, [&](const Options::Address& address, Outlet& outlet) {
    const auto acknowledges = address.kind == "udp" ? options.acknowledges : Line::Acknowledges::kNothing;
    auto line = std::make_unique<Line>(station.device, station.faults, outlet, acknowledges, steadySeconds);
    station.attach(*line, address.kind + " " + std::to_string(++ofKind[address.kind]));
    return line;
  });
  std::string ready = listening.ready;
  if (!options.state.empty()) station.keepStateIn(options.state, options.isReset);
  if (!options.serialNumber.empty()) {
    station.device.fiscal().serialNumber = options.serialNumber;
    station.changed();
  }

  std::unique_ptr<WebServer> web;
  if (options.web) {
    web = std::make_unique<WebServer>(loop, *options.web,
                                      [&station](const Request& request) { return answer(station, request); });
    station.onChange = [&web] { web->changed(); };
    ready += " web=" + web->url();
  }
  const CardTimer cardTimer(loop, station);
  std::cout << ready << std::endl;
  if (arguments.empty()) openBrowser(web->url());
  loop.run();
  return 0;
}

int runToTheEnd(const std::vector<std::string>& arguments) {
  try {
    return run(arguments);
  } catch (const std::invalid_argument& error) {
    std::cerr << "mirvane-emulator: " << error.what() << "\nTry --help.\n";
    return 2;
  } catch (const UsageError& error) {
    std::cerr << "mirvane-emulator: " << error.what() << "\nTry --help.\n";
    return 2;
  } catch (const FaultError& error) {
    std::cerr << "mirvane-emulator: " << error.what() << "\nTry --help.\n";
    return 2;
  } catch (const std::exception& error) {
    std::cerr << "mirvane-emulator: " << error.what() << "\n";
    return 1;
  }
}

}  // namespace
}  // namespace mirvane::emulator

int main(int count, char** arguments) {
  using namespace mirvane::emulator;
  prepareConsole();
  const std::vector<std::string> words = commandLine(count, arguments);
  const int status = runToTheEnd(words);
  if (status != 0 && words.empty()) keepConsole();
  return status;
}
