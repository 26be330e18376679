#include "http/machine.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace mirvane {

std::vector<std::string> commandLine(int count, char** arguments) { return {arguments + 1, arguments + count}; }

void prepareConsole() { std::signal(SIGPIPE, SIG_IGN); }

void writeOut(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return;
    bytes.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
  }
}

void openBrowser(const std::string& /*url*/) {}

void keepConsole() {}

bool mayReusePorts() { return true; }

}  // namespace mirvane
