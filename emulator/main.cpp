#include <charconv>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>

#include "emulator/transport.h"

namespace mirvane::emulator {
namespace {

constexpr const char* kHelp =
    "usage: mirvane-emulator [option]...\n"
    "A fiscal cash register to develop and test against. At least one of:\n"
    "  --pty [LINK]             a pseudo-terminal, with a symbolic link to it\n"
    "  --serial DEVICE          a serial port of this machine\n"
    "  --udp [ADDRESS:]PORT     the network; 127.0.0.1 unless told otherwise, port 0 lets the system choose\n"
    "and any of:\n"
    "  --paper FILE             append what is printed to FILE\n"
    "  --acknowledge WHAT       the network: \"frame\" (each frame gets its ACK) or \"enq\" (the ENQ ahead of it "
    "does)\n"
    "  --quiet                  do not show what is printed\n"
    "  --paced                  take the time that a line of 115200 bits per second takes\n"
    "  --script FILE            misbehave as the rules in FILE tell\n"
    "  --fault RULE             misbehave as RULE tells: --fault \"on 5/ lost\"\n"
    "  --journal FOLDER         keep the files of each closing's journal in FOLDER\n"
    "  --journal-piece BYTES    hand the journal over in pieces of so many bytes (1000), at most 60000\n"
    "  --pad-journal BYTES      fill the journal's printed text up to so many bytes\n"
    "  --card-seconds SECONDS   a card terminal takes so long (2)\n"
    "  --card OUTCOME           how the next card payment ends: 0 (approved), 112, 156, 157 or 159; given again, the\n"
    "                           one after it; \"always OUTCOME\" for all others\n"
    "  --help                   show this text\n"
    "When it listens it prints one line: ready, and the addresses.\n";

/// The command line cannot be followed.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Options {
  struct Address {
    std::string kind, text;
  };
  std::vector<Address> addresses;
  std::string paper;
  Journal::Options journal;
  CardPayments::Options cards;
  Line::Acknowledges acknowledges = Line::Acknowledges::kFrame;
  bool isQuiet = false;
  bool isPaced = false;
  bool wantsHelp = false;
};

/// Tells whether the folder's new file holds all of `file`.
bool keepJournal(const std::string& folder, const Journal::File& file) {
  std::ofstream output(folder + "/" + file.name, std::ios::binary);
  output << file.bytes << std::flush;
  return output.good();
}

/// A folder that takes no file is told now, not at the day's closing.
void requireWritable(const std::string& folder) {
  const Journal::File probe{".mirvane-emulator", ""};
  if (!keepJournal(folder, probe)) throw UsageError(folder + ": no journal can be written there");
  std::remove((folder + "/" + probe.name).c_str());
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

Options parse(const std::vector<std::string>& arguments, Faults& faults) {
  Options options;
  std::size_t i = 0;
  const auto value = [&](const std::string& option) -> const std::string& {
    if (++i == arguments.size()) throw UsageError(option + " needs a value");
    return arguments[i];
  };
  for (; i < arguments.size(); ++i) {
    const std::string& option = arguments[i];
    if (option == "--pty") {
      const bool hasLink = i + 1 < arguments.size() && !arguments[i + 1].starts_with("--");
      options.addresses.push_back({option, hasLink ? arguments[++i] : ""});
    } else if (option == "--serial" || option == "--udp") {
      options.addresses.push_back({option, value(option)});
    } else if (option == "--paper") {
      options.paper = value(option);
    } else if (option == "--journal") {
      const std::string& folder = value(option);
      requireWritable(folder);
      options.journal.keep = [folder](const Journal::File& file) { return keepJournal(folder, file); };
    } else if (option == "--journal-piece") {
      // With its frame, a piece must fit a datagram.
      options.journal.pieceSize = parseSize(option, value(option), 1, 60'000);
    } else if (option == "--pad-journal") {
      options.journal.padding = parseSize(option, value(option), 0, 1'000'000'000);
    } else if (option == "--card-seconds") {
      options.cards.seconds = static_cast<double>(parseSize(option, value(option), 0, 3600));
    } else if (option == "--card") {
      addOutcome(options.cards, value(option));
    } else if (option == "--acknowledge") {
      const std::string& what = value(option);
      if (what != "frame" && what != "enq") throw UsageError("--acknowledge takes frame or enq, not " + what);
      options.acknowledges = what == "enq" ? Line::Acknowledges::kEnq : Line::Acknowledges::kFrame;
    } else if (option == "--quiet") {
      options.isQuiet = true;
    } else if (option == "--paced") {
      options.isPaced = true;
    } else if (option == "--script") {
      const std::string& path = value(option);
      std::ifstream file(path, std::ios::binary);
      if (!file) throw UsageError(path + ": cannot be read");
      try {
        faults.addScript(std::string(std::istreambuf_iterator<char>(file), {}));
      } catch (const FaultError& error) {
        throw UsageError(path + ": " + error.what());
      }
    } else if (option == "--fault") {
      faults.add(value(option));
    } else if (option == "--help") {
      options.wantsHelp = true;
    } else {
      throw UsageError("unknown option " + option);
    }
  }
  if (options.addresses.empty() && !options.wantsHelp) throw UsageError("--pty, --serial or --udp is needed");
  return options;
}

volatile std::sig_atomic_t stop = 0;

/// Lets the two signals that end the program come only where `serve` waits. Returns the mask for that.
sigset_t catchSignals() {
  struct sigaction action {};
  action.sa_handler = [](int) { stop = 1; };
  ::sigaction(SIGTERM, &action, nullptr);
  ::sigaction(SIGINT, &action, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  sigaddset(&blocked, SIGINT);
  ::sigprocmask(SIG_BLOCK, &blocked, &before);
  sigdelset(&before, SIGTERM);
  sigdelset(&before, SIGINT);
  return before;
}

int run(const std::vector<std::string>& arguments) {
  Faults faults;
  const Options options = parse(arguments, faults);
  if (options.wantsHelp) {
    std::cout << kHelp;
    return 0;
  }
  std::ofstream paper;
  if (!options.paper.empty()) {
    paper.open(options.paper, std::ios::binary | std::ios::app);
    if (!paper) throw UsageError(options.paper + ": cannot be written");
  }
  Device device([&](TextView line) {
    const std::string text = toUtf8(line) + "\n";
    if (!options.isQuiet) std::cout << text << std::flush;
    if (paper.is_open()) paper << text << std::flush;
  });

  device.journal().options = options.journal;
  device.cards().options = options.cards;

  const sigset_t mask = catchSignals();
  std::vector<std::unique_ptr<Transport>> transports;
  std::string ready = "ready";
  for (const auto& [kind, text] : options.addresses) {
    transports.push_back(kind == "--udp"   ? openUdp(text, device, faults, options.isPaced, options.acknowledges)
                         : kind == "--pty" ? openPty(text, device, faults, options.isPaced)
                                           : openSerial(text, device, faults, options.isPaced));
    ready += " " + transports.back()->address();
  }
  std::cout << ready << std::endl;
  serve(transports, stop, mask);
  return 0;
}

}  // namespace
}  // namespace mirvane::emulator

int main(int count, char** arguments) {
  try {
    return mirvane::emulator::run({arguments + 1, arguments + count});
  } catch (const mirvane::emulator::TransportError& error) {
    std::cerr << "mirvane-emulator: " << error.what() << "\n";
    return 1;
  } catch (const std::runtime_error& error) {
    std::cerr << "mirvane-emulator: " << error.what() << "\nTry --help.\n";
    return 2;
  }
}
