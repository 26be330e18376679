#include "service/program/serve.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <condition_variable>
#include <future>
#include <thread>

#include "http/console.h"
#include "http/server.h"
#include "service/interface.h"
#ifdef MIRVANE_POSTGRES
#include "service/postgres_store.h"
#endif
#include "service/sqlite_store.h"
#include "service/views.h"
#include "service/worker.h"

namespace mirvane::service {
namespace {

/// For the job at hand to come to its end.
constexpr std::chrono::seconds kFarewell{10};

/// A name is what a proxy has for it, which asks from this machine for whoever asks there.
bool isForOthers(const Options& options) {
  const std::string address = http::Endpoint("--web", options.web).address;
  return !options.hosts.empty() || (!address.starts_with("127.") && address != "::1");
}

/// A path may hold colons, too.
bool isPort(const std::string& port) {
  if (port.starts_with('/')) return true;
  const std::size_t colon = port.find(':');
  return colon == std::string::npos ? !http::isAddress(port) : http::isAddress(port.substr(0, colon));
}

std::unique_ptr<Store> openStore(const Options& options) {
#ifdef MIRVANE_POSTGRES
  if (isPostgres(options.store))
    return std::make_unique<PostgresStore>(options.store, options.registerName, options.group);
#endif
  return std::make_unique<SqliteStore>(options.store);
}

/// Where the flight record goes; none unless it is wanted.
Text recordFolder(const Options& options) {
  if (!options.isRecorded) return {};
  const std::filesystem::path beside = isPostgres(options.store) ? tokensFile(options) : pathOf(options.store);
  const std::filesystem::path folder = beside.parent_path() / "records";
  create_directories(folder);
  return folder.u16string();
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

}  // namespace

bool isPostgres(const std::string& store) {
  return store.starts_with("postgres://") || store.starts_with("postgresql://");
}

std::filesystem::path tokensFile(const Options& options) {
  if (!options.tokens.empty()) return pathOf(options.tokens);
  return pathOf((isPostgres(options.store) ? "mirvane-service" : options.store) + ".tokens");
}

void require(const Options& options) {
  if (isForOthers(options) && Tokens(tokensFile(options)).hashes().empty()) {
    throw std::invalid_argument("others may ask there: make a token first, with token add NAME");
  }
  if (!isPort(options.port)) {
    throw std::invalid_argument("--register " + options.port +
                                ": an address in digits with a port, as 192.168.1.50:9100");
  }
  if (!isPostgres(options.store)) {
    if (!options.registerName.empty() || !options.group.empty())
      throw std::invalid_argument("--name and --group are for a database that several services share");
    return;
  }
#ifdef MIRVANE_POSTGRES
  if (options.registerName.empty())
    throw std::invalid_argument("a database that is shared wants a --name for the register");
#else
  throw std::invalid_argument("this build has no client of PostgreSQL");
#endif
}

int serve(const Options& options, const std::function<void(std::string_view)>& output, const Manager& manager) {
  require(options);
  const http::Endpoint endpoint("--web", options.web);
  Tokens tokens(tokensFile(options));
  const bool isOpen = isForOthers(options);
  platform::Platform& machine = platform::hostPlatform();
  auto console = std::make_unique<Console>(output);
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
  manager.ready();
  loop.run();
  worker.stop();
  alarm.ring();
  const bool isOver = end.get_future().wait_for(kFarewell) == std::future_status::ready;
  board.log("ended", {{"job", isOver ? "" : board.facts().job}});
  if (isOver) return thread.join(), 0;
  // It waits for somebody. As after a crash, the next start finds out what became of it.
  console = nullptr;
  manager.ended();
  std::_Exit(0);
}

}  // namespace mirvane::service
