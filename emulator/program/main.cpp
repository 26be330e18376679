#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <csignal>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>

#include "emulator/program/command_line.h"
#include "emulator/program/player.h"
#include "emulator/program/station.h"
#include "emulator/program/transport.h"
#include "emulator/program/web.h"
#include "http/console.h"
#include "http/machine.h"
#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

/// What the station does by itself, and not only when the next command comes.
class Ticker {
 public:
  Ticker(boost::asio::io_context& loop, Station& station) : station_(station), timer_(loop) { wait(); }

 private:
  void wait() {
    timer_.expires_after(std::chrono::milliseconds(200));
    timer_.async_wait([this](const boost::system::error_code& error) {
      if (error) return;
      station_.tick();
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

/// Replays a record instead of the register, and returns the exit code.
int play(const Options& options, boost::asio::io_context& loop) {
  if (options.webAddress || !options.state.empty())
    throw UsageError("--replay cannot be combined with --web or --state");
  std::ifstream file(pathOf(options.replay), std::ios::binary);
  if (!file) throw UsageError(options.replay + ": cannot be read");
  try {
    Player player(loop, std::string(std::istreambuf_iterator<char>(file), {}));
    const Listening listening(options, loop,
                              [&player](const Options::Address&, Outlet& outlet) { return player.connect(outlet); });
    std::cout << listening.ready << std::endl;
    loop.run();
    // Counts what the till had sent before the signal, even if it is still in transit.
    loop.restart();
    loop.run_for(std::chrono::milliseconds(100));
    return player.tell(options.isQuiet);
  } catch (const ReplayError& error) {
    throw UsageError(options.replay + ": " + error.what());
  }
}

// Shown in the window after a double click.
constexpr const char* kDoubleClicked =
    "\n"
    "Port name for the till: 127.0.0.1:9100\n"
    "Closing this window switches the register off.\n"
    "\n"
    "Όνομα θύρας για το πρόγραμμα του ταμείου: 127.0.0.1:9100\n"
    "Αν κλείσετε αυτό το παράθυρο, η ταμειακή σβήνει.\n"
    "\n";

int run(const std::vector<std::string>& arguments) {
  Options options;
  Console console;
  Station station([&options, &console](TextView line) {
    const std::string text = toUtf8(line) + "\n";
    if (!options.isQuiet) console.write(text);
    if (options.paper.is_open()) options.paper << text << std::flush;
  });
  if (const auto status = follow(arguments, options, station.faults)) return *status;
  if (options.addresses.empty()) {
    options.addresses.push_back({"udp", "9100"});
    if (!options.webAddress && options.replay.empty()) options.webAddress = "8100";
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

  std::unique_ptr<Web> web;
  options.web.address = options.webAddress.value_or("");
  if (!options.web.address.empty() || !options.web.log.empty()) web = openWeb(loop, station, options.web);
  if (options.webAddress) ready += " web=" + web->url();
  const Ticker ticker(loop, station);
  console.write(ready + "\n");
  if (arguments.empty()) {
    console.write(kDoubleClicked);
    openBrowser(web->url());
  }
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
  using namespace mirvane;
  using namespace mirvane::emulator;
  prepareConsole();
  const int status = runToTheEnd(commandLine(count, arguments));
  if (status != 0) keepConsole();
  return status;
}
