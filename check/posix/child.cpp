#include "check/child.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace mirvane::check {

struct Child::System {
  pid_t id = 0;
  int output = -1;
};

Child::Child(const std::filesystem::path& program, const std::vector<std::string>& arguments,
             const std::filesystem::path& folder)
    : system_(std::make_unique<System>()) {
  std::vector<std::string> words = {program.string()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("pipe");
  const pid_t id = fork();
  if (id == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    dup2(ends[1], STDOUT_FILENO);
    const int nothing = open("/dev/null", O_RDWR);
    dup2(nothing, STDIN_FILENO);
    dup2(nothing, STDERR_FILENO);
    if (folder.empty() || chdir(folder.c_str()) == 0) execv(program.c_str(), pointers.data());
    _exit(127);
  }
  close(ends[1]);
  system_->id = id;
  system_->output = ends[0];
  if (id < 0) throw std::runtime_error("fork");
}

Child::~Child() {
  close(system_->output);
  if (system_->id <= 0) return;
  kill(system_->id, SIGKILL);
  waitpid(system_->id, nullptr, 0);
}

bool Child::take() {
  std::array<char, 4096> bytes{};
  for (pollfd entry{system_->output, POLLIN, 0}; poll(&entry, 1, 0) > 0;) {
    const auto count = read(system_->output, bytes.data(), bytes.size());
    if (count <= 0) return false;
    output_.append(bytes.data(), static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace mirvane::check
