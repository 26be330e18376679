#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace mirvane::test {

/// The emulator, run as the program that it is. It listens when the constructor returns, and is ended by its id.
class EmulatorProcess {
 public:
  explicit EmulatorProcess(std::vector<std::string> options) {
    const char* program = std::getenv("MIRVANE_EMULATOR");
    if (program == nullptr) {
      ADD_FAILURE() << "MIRVANE_EMULATOR must name the emulator program";
      return;
    }
    options.insert(options.begin(), {program, "--quiet", "--paper", paperFile_});
    std::vector<char*> arguments;
    for (std::string& option : options) arguments.push_back(option.data());
    arguments.push_back(nullptr);

    int pipeEnds[2];
    if (pipe(pipeEnds) != 0) std::abort();
    process_ = fork();
    if (process_ == 0) {
      dup2(pipeEnds[1], STDOUT_FILENO);
      close(pipeEnds[0]);
      execv(program, arguments.data());
      _exit(127);
    }
    close(pipeEnds[1]);
    for (char byte = 0; read(pipeEnds[0], &byte, 1) == 1 && byte != '\n';) ready_ += byte;
    close(pipeEnds[0]);
    EXPECT_TRUE(ready_.starts_with("ready ")) << ready_;
  }
  EmulatorProcess(const EmulatorProcess&) = delete;
  EmulatorProcess& operator=(const EmulatorProcess&) = delete;
  ~EmulatorProcess() {
    std::remove(paperFile_.c_str());
    if (process_ <= 0) return;
    int status = 0;
    kill(process_, SIGTERM);
    waitpid(process_, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the emulator ended with " << status;
  }

  /// The name under which the driver reaches it.
  std::string port() const { return ready_.substr(ready_.find('=') + 1); }

  std::string paper() const {
    std::stringstream text;
    text << std::ifstream(paperFile_).rdbuf();
    return text.str();
  }

 private:
  const std::string paperFile_ = testing::TempDir() + "mirvane-paper-" + std::to_string(getpid());
  pid_t process_ = 0;
  std::string ready_;
};

}  // namespace mirvane::test
