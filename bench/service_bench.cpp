// What the service adds to a receipt, and whether much work slows it: service-bench SERVICE (NAME PORT PORT)...
// The two registers of a name are alike. Receipts are sold at one of them through the component alone, by turns with
// receipts at the other one through the service, so that whatever else slows the machine slows both. The first name's
// register then sells 10,000 receipts that are queued before. The databases are written in the current folder, and
// each commit waits for the disk.

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sqlite3.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "bench/till.h"
#include "http/json.h"

namespace mirvane::bench {

void fail(const std::string& what) {
  std::fprintf(stderr, "service-bench: %s\n", what.c_str());
  std::exit(1);
}

namespace {

constexpr int kLines = 10;
constexpr int kQueued = 10'000;
constexpr int kPart = 1'000;
constexpr int kBehind = 100'000;

double milliseconds(const std::function<void()>& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double medianOf(std::vector<double> all) {
  std::nth_element(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(all.size() / 2), all.end());
  return all[all.size() / 2];
}

std::string receiptOf(int lines, bool isPaid = true) {
  std::string body = "{\"lines\": [";
  for (int i = 0; i < lines; ++i) {
    body.append(i > 0 ? "," : "").append(R"({"description": "Καφές", "price": 2.5, "vat": 24})");
  }
  return body + "]" + (isPaid ? R"(, "payments": [{"type": "cash"}]})" : "}");
}

/// The service at a register, from its start to its end, and one connection to it.
class Service {
 public:
  Service(const char* program, const char* port, const std::string& store) {
    int ends[2];
    if (pipe(ends) != 0) fail("no pipe");
    process_ = fork();
    if (process_ == 0) {
      dup2(ends[1], STDOUT_FILENO);
      close(ends[0]);
      execl(program, program, "--register", port, "--store", store.c_str(), "--web", "0", "--queue", "20000", nullptr);
      _exit(127);
    }
    close(ends[1]);
    std::string ready;
    for (char byte = 0; read(ends[0], &byte, 1) == 1 && byte != '\n';) ready += byte;
    const http::Json line = http::parseJson(ready.empty() ? "{}" : ready);
    if (line.find("web") == nullptr) fail("the service did not start");
    const auto& url = *line.find("web")->as<std::string>();
    // Its log is read by nobody, and must not stop it.
    std::thread([end = ends[0]] {
      std::array<char, 4096> piece{};
      while (read(end, piece.data(), piece.size()) > 0) continue;
      close(end);
    }).detach();
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(url.substr(url.rfind(':') + 1))));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socket_ = socket(AF_INET, SOCK_STREAM, 0);
    const int now = 1;
    setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &now, sizeof now);
    if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) fail("no connection");
  }
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;
  ~Service() {
    close(socket_);
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
  }

  http::Json ask(const std::string& method, const std::string& path, const std::string& body = {}, int wait = 600) {
    const std::string request = method + " /v1/" + path +
                                " HTTP/1.1\r\nHost: localhost\r\nPrefer: wait=" + std::to_string(wait) +
                                "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    if (write(socket_, request.data(), request.size()) < 0) fail("the service is gone");
    std::string answer;
    std::size_t head = std::string::npos;
    std::size_t whole = 1;
    for (std::array<char, 8192> piece{}; answer.size() < whole;) {
      const auto count = read(socket_, piece.data(), piece.size());
      if (count <= 0) fail("the service is gone");
      answer.append(piece.data(), static_cast<std::size_t>(count));
      if (head == std::string::npos) head = answer.find("\r\n\r\n");
      const std::size_t length = answer.find("Content-Length: ");
      whole = head == std::string::npos ? answer.size() + 1 : head + 4 + std::stoul(answer.substr(length + 16));
    }
    return http::parseJson(answer.substr(head + 4));
  }
  void sell(const std::string& id, int lines) {
    const http::Json told = ask("PUT", "receipts/" + id, receiptOf(lines));
    const http::Json* state = told.find("state");
    if (state == nullptr || *state->as<std::string>() != "committed") fail(told.dump());
  }
  /// Until so many are left.
  void awaitUnfinished(int count) {
    while (*ask("GET", "status").find("unfinished")->as<double>() > count) usleep(20'000);
  }
  /// In MiB.
  double memory() const {
    std::size_t pages = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/" + std::to_string(process_) + "/statm") >> pages >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
  }

 private:
  pid_t process_ = 0;
  int socket_ = 0;
};

void removeStore(const std::string& store) {
  for (const char* end : {"", "-wal", "-shm"}) std::filesystem::remove(store + end);
}

/// What a service must wait for, whatever it does well.
class Disk {
 public:
  Disk() : file_(open("disk", O_CREAT | O_WRONLY, 0600)) {}
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;
  ~Disk() {
    close(file_);
    std::filesystem::remove("disk");
  }
  /// About what a commit writes.
  void write() const {
    static const std::string block(32'768, 'x');
    if (pwrite(file_, block.data(), block.size(), 0) < 0 || fdatasync(file_) != 0) fail("the disk cannot be written");
  }

 private:
  const int file_;
};

void benchReceipts(const char* program, const char* name, const char* alone, const char* served, int times) {
  constexpr int kWarm = 5;
  const std::string store = std::string(name) + ".db";
  removeStore(store);
  Till till;
  till.connect(fromUtf8(alone));
  Service service(program, served, store);
  std::vector<double> component;
  std::vector<double> over;
  std::vector<double> writes;
  const Disk disk;
  for (int i = -kWarm; i < times; ++i) {
    const double without = milliseconds([&] {
      for (int line = 0; line < kLines; ++line) till.sell();
      till.pay(2.5 * kLines);
    });
    const double with = milliseconds([&] { service.sell("r" + std::to_string(i + kWarm), kLines); });
    const double write = milliseconds([&] { disk.write(); });
    if (i < 0) continue;
    writes.push_back(write);
    component.push_back(without);
    over.push_back(with);
  }
  till.disconnect();
  const double without = medianOf(std::move(component));
  const double with = medianOf(std::move(over));
  std::printf("  %-8s %d lines: component %.1f ms, service %.1f ms, %+.1f ms; a write to the disk %.2f ms\n", name,
              kLines, without, with, with - without, medianOf(std::move(writes)));
}

// A receipt that is not paid keeps the others waiting until all are there.
void benchQueue(const char* program, const char* port) {
  const std::string store = "queue.db";
  removeStore(store);
  Service service(program, port, store);
  service.sell("first", 1);
  const double before = service.memory();
  service.ask("PUT", "receipts/open", receiptOf(1, false));
  const auto queue = [&service](int from, int to) {
    return milliseconds([&] {
      for (int i = from; i < to; ++i) service.ask("PUT", "receipts/q" + std::to_string(i), receiptOf(1), 0);
    });
  };
  const double first = queue(0, kPart);
  queue(kPart, kQueued - kPart);
  const double last = queue(kQueued - kPart, kQueued);
  const double full = service.memory();
  service.ask("PUT", "receipts/open/payments/1", R"({"type": "cash"})");
  const double sellsFirst = milliseconds([&] { service.awaitUnfinished(kQueued - kPart); });
  service.awaitUnfinished(kPart);
  const double sellsLast = milliseconds([&] { service.awaitUnfinished(0); });
  std::printf(
      "  %d queued: taking one in %.2f ms, the last %d %.2f ms; selling one %.2f ms, the last %d %.2f ms; memory %.1f "
      "MiB, all queued %.1f MiB, at the end %.1f MiB\n",
      kQueued, first / kPart, kPart, last / kPart, sellsFirst / kPart, kPart, sellsLast / kPart, before, full,
      service.memory());
}

// The receipts of the queue, and copies of them.
void benchStart(const char* program, const char* port) {
  const std::string store = "queue.db";
  const std::string copies = std::to_string(kBehind / kQueued - 1);
  sqlite3* database = nullptr;
  if (sqlite3_open(store.c_str(), &database) != SQLITE_OK) fail("no database");
  const std::string sql =
      "WITH RECURSIVE copy (n) AS (VALUES (1) UNION ALL SELECT n + 1 FROM copy WHERE n < " + copies +
      ") INSERT INTO jobs SELECT place + n * 1000000, id || '-' || n, kind, state, content, progress, result, created, "
      "changed, version + n * 1000000 FROM jobs, copy";
  if (sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail(sqlite3_errmsg(database));
  sqlite3_close(database);
  std::unique_ptr<Service> service;
  const double ready = milliseconds([&] { service = std::make_unique<Service>(program, port, store); });
  const double listed = milliseconds([&] { service->ask("GET", "receipts?limit=50"); });
  const double sold = milliseconds([&] { service->sell("after", 1); });
  std::printf(
      "  %d behind it: asked for %.0f ms after its start, a page of 50 in %.1f ms, the first sale after %.0f ms; "
      "memory %.1f MiB\n",
      kBehind, ready, listed, ready + listed + sold, service->memory());
  service = nullptr;
  removeStore(store);
}

}  // namespace
}  // namespace mirvane::bench

int main(int argc, char** argv) {
  using namespace mirvane::bench;
  if (argc < 5 || argc % 3 != 2) fail("usage: service-bench SERVICE (NAME PORT PORT)...");
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  for (int i = 2; i < argc; i += 3) {
    constexpr int kTimes = 100;
    benchReceipts(argv[1], argv[i], argv[i + 1], argv[i + 2], kTimes);
  }
  benchQueue(argv[1], argv[4]);
  benchStart(argv[1], argv[4]);
  return 0;
}
