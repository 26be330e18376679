#include <CLI/CLI.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <condition_variable>
#include <future>
#include <iostream>
#include <thread>

#include "http/console.h"
#include "http/machine.h"
#include "http/server.h"
#include "service/interface.h"
#ifdef MIRVANE_POSTGRES
#include "service/postgres_store.h"
#endif
#include "service/sqlite_store.h"
#include "service/views.h"
#include "service/worker.h"
#include "version.h"

namespace mirvane::service {
namespace {

constexpr const char* kAbout =
    "Receipts over HTTP, each exactly once, at one cash register. Without options it drives the register at\n"
    "127.0.0.1:9100 and is asked at http://127.0.0.1:8200/.";

/// For the job at hand to come to its end.
constexpr std::chrono::seconds kFarewell{10};

struct Options {
  std::string port = "127.0.0.1:9100", web = "8200", store = "mirvane-service.db", tokens, name;
  std::string registerName, group;
  std::vector<std::string> hosts, origins;
  int mostUnfinished = 10'000;
  bool isRecorded = false;
};

bool isPostgres(const std::string& store) {
  return store.starts_with("postgres://") || store.starts_with("postgresql://");
}

std::filesystem::path tokensFile(const Options& options) {
  if (!options.tokens.empty()) return pathOf(options.tokens);
  return pathOf((isPostgres(options.store) ? "mirvane-service" : options.store) + ".tokens");
}

/// Where the flight record goes; none unless it is wanted.
Text recordFolder(const Options& options) {
  if (!options.isRecorded) return {};
  const std::filesystem::path beside = isPostgres(options.store) ? "." : pathOf(options.store).parent_path();
  const std::filesystem::path folder = beside / "records";
  create_directories(folder);
  return folder.u16string();
}

std::unique_ptr<Store> openStore(const Options& options) {
  if (!isPostgres(options.store)) {
    if (!options.registerName.empty() || !options.group.empty())
      throw std::invalid_argument("--name and --group are for a database that several services share");
    return std::make_unique<SqliteStore>(options.store);
  }
#ifdef MIRVANE_POSTGRES
  if (options.registerName.empty())
    throw std::invalid_argument("a database that is shared wants a --name for the register");
  return std::make_unique<PostgresStore>(options.store, options.registerName, options.group);
#else
  throw std::invalid_argument("this build has no client of PostgreSQL");
#endif
}

/// What other services write into the store is told here, too. A caller may wait for another register's receipt, which
/// is none of the changes that concern this one.
void watchOthers(boost::asio::steady_timer& timer, Store& store, http::Server& server,
                 const std::function<void()>& wake, std::int64_t seen) {
  timer.expires_after(std::chrono::milliseconds(500));
  timer.async_wait([&timer, &store, &server, wake, seen](const boost::system::error_code& error) {
    if (error) return;
    std::int64_t latest = seen;
    try {
      latest = store.latest();
    } catch (const StoreError&) {
      // The worker tells what is wrong.
    }
    if (latest != seen) {
      wake();
      server.changed();
    } else {
      server.askAgain();
    }
    watchOthers(timer, store, server, wake, latest);
  });
}

bool isLoopback(const std::string& address) { return address.starts_with("127.") || address == "::1"; }

/// Work for a thread that sleeps.
class Alarm {
 public:
  void ring() {
    const std::lock_guard lock(mutex_);
    isRinging_ = true;
    changed_.notify_all();
  }
  void sleep(std::uint32_t milliseconds) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return isRinging_; });
    isRinging_ = false;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool isRinging_ = false;
};

int serve(const Options& options) {
  const http::Endpoint endpoint("--web", options.web);
  Tokens tokens(tokensFile(options));
  const bool isOpen = !isLoopback(endpoint.address);
  if (isOpen && tokens.hashes().empty()) {
    throw std::invalid_argument("--web " + options.web + " is for others too: make a token first, with token add NAME");
  }
  platform::Platform& machine = platform::hostPlatform();
  auto console = std::make_unique<Console>();
  Board board;
  board.log = [&](const char* event, const Json& members) {
    Json line{{"time", timeText(machine.clock.sinceEpoch())}, {"event", event}};
    console->write(line.update(members).dump(false) + "\n");
  };
  const std::unique_ptr<Store> kept = openStore(options);
  Store& store = *kept;
  boost::asio::io_context loop(1);
  boost::asio::signal_set signals(loop, SIGINT, SIGTERM);
  signals.async_wait([&loop](const boost::system::error_code&, int) { loop.stop(); });
  Alarm alarm;
  Worker worker(machine, store, board, fromUtf8(options.port), recordFolder(options));
  const auto wake = [&] {
    worker.wake();
    alarm.ring();
  };
  const auto now = [&machine] { return machine.clock.sinceEpoch(); };
  Interface interface(store, board,
                      {isOpen ? &tokens : nullptr, options.mostUnfinished, wake, now, options.registerName});
  http::Server::Options web{options.hosts, mayReusePorts()};
  web.origins = options.origins;
  web.calm = std::chrono::milliseconds(0);
  web.refuse = &Interface::problem;
  http::Server server(loop, endpoint, web, [&](http::Request& request) {
    http::Answer answer = interface.answer(request);
    if (answer.status == 401) board.log("refused", {{"path", request.path}});
    return answer;
  });
  board.onChange = [&] { boost::asio::post(loop, [&server] { server.changed(); }); };
  boost::asio::steady_timer timer(loop);
  if (store.isShared()) watchOthers(timer, store, server, wake, 0);
  std::promise<void> end;
  std::thread thread([&] {
    worker.run([&alarm](std::uint32_t milliseconds) { alarm.sleep(milliseconds); });
    end.set_value();
  });
  board.log("ready", {{"web", server.url()}, {"register", options.port}});
  loop.run();
  worker.stop();
  alarm.ring();
  const bool isOver = end.get_future().wait_for(kFarewell) == std::future_status::ready;
  board.log("ended", {{"job", isOver ? "" : board.facts().job}});
  if (isOver) return thread.join(), 0;
  // It waits for somebody. As after a crash, the next start finds out what became of it.
  console = nullptr;
  std::_Exit(0);
}

int run(std::vector<std::string> arguments) {
  Options options;
  CLI::App app(kAbout, "mirvane-service");
  app.set_version_flag("--version", "mirvane-service " MIRVANE_VERSION);
  app.require_subcommand(0, 1);
  app.add_option("--store", options.store,
                 "the database's file (mirvane-service.db), or one that several services share: postgresql://...");
  app.add_option("--name", options.registerName, "the register's name among those that share the database");
  app.add_option("--group", options.group, "the registers that may do each other's work, by a name");
  app.add_option("--tokens", options.tokens, "the tokens' file; without it, it stands beside the database's");
  app.add_option("--register", options.port, "where the register is: COM1, /dev/ttyUSB0, 192.168.1.50:9100");
  app.add_option("--web", options.web,
                 "[ADDRESS:]PORT to be asked at; any address but this machine's own wants tokens");
  app.add_option("--web-host", options.hosts, "serve under this name too");
  app.add_option("--origin", options.origins, "let pages from there ask: https://till.shop");
  app.add_option("--queue", options.mostUnfinished, "how many jobs may wait (10000)");
  app.add_flag("--record", options.isRecorded, "write the flight record into the folder records beside the database");
  app.add_subcommand("run", "in this console, which is what happens without a word too")->fallthrough();
  CLI::App* token = app.add_subcommand("token", "who may ask")->require_subcommand(1)->fallthrough();
  CLI::App* add = token->add_subcommand("add", "makes a token and prints it, once")->fallthrough();
  add->add_option("NAME", options.name)->required();
  CLI::App* remove = token->add_subcommand("remove", "takes a token back")->fallthrough();
  remove->add_option("NAME", options.name)->required();
  CLI::App* list = token->add_subcommand("list", "prints the names")->fallthrough();
  try {
    std::reverse(arguments.begin(), arguments.end());
    app.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  }
  if (!*token) return serve(options);
  Tokens tokens(tokensFile(options));
  if (*add) {
    const std::string fresh = tokens.add(options.name);
    if (fresh.empty()) throw std::invalid_argument("there is a token of that name");
    std::cout << fresh << "\n";
  }
  if (*remove && !tokens.remove(options.name)) throw std::invalid_argument("there is no token of that name");
  if (*list) {
    for (const auto& [name, hash] : tokens.hashes()) std::cout << name << "\n";
  }
  return 0;
}

int runToTheEnd(const std::vector<std::string>& arguments) {
  try {
    return run(arguments);
  } catch (const std::invalid_argument& error) {
    std::cerr << "mirvane-service: " << error.what() << "\nTry --help.\n";
    return 2;
  } catch (const std::exception& error) {
    std::cerr << "mirvane-service: " << error.what() << "\n";
    return 1;
  }
}

}  // namespace
}  // namespace mirvane::service

int main(int count, char** arguments) {
  mirvane::prepareConsole();
  return mirvane::service::runToTheEnd(mirvane::commandLine(count, arguments));
}
