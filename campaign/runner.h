#pragma once

#include <sys/mman.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <stdexcept>
#include <type_traits>
#include <vector>

namespace mirvane::campaign {

/// What `work` gives for 0 up to `count`, done by so many child processes. Where it crashed, `crashed` stands in its
/// place, and where it was not over after seconds of the processor's time, `hung`; either is told on the error output.
template <class Result, class Work>
std::vector<Result> runAll(std::size_t count, unsigned processes, Work work, const Result& crashed,
                           const Result& hung) {
  static_assert(std::is_trivially_copyable_v<Result>);
  constexpr itimerval kLimit{{}, {20, 0}};
  // Shared with the children: the results, and behind them how far each child has come.
  const std::size_t size = count * sizeof(Result) + processes * sizeof(std::size_t);
  void* const shared = mmap(nullptr, size + 1, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (shared == MAP_FAILED) throw std::runtime_error("no memory to share");
  auto* const progress = static_cast<std::size_t*>(shared);
  auto* const results = reinterpret_cast<Result*>(progress + processes);
  std::vector<pid_t> children(processes);
  const auto start = [&](unsigned child) {
    children[child] = fork();
    if (children[child] != 0) return;
    for (std::size_t i = progress[child]; i < count; i += processes) {
      progress[child] = i;
      setitimer(ITIMER_PROF, &kLimit, nullptr);
      results[i] = work(i);
    }
    _exit(0);
  };
  for (unsigned child = 0; child < processes; ++child) {
    progress[child] = child;
    start(child);
  }
  for (unsigned child = 0; child < processes; ++child) {
    for (;;) {
      int status = 0;
      waitpid(children[child], &status, 0);
      if (WIFEXITED(status) && WEXITSTATUS(status) == 0) break;
      const bool isHung = WIFSIGNALED(status) && WTERMSIG(status) == SIGPROF;
      std::cerr << "number " << progress[child] << (isHung ? " hangs\n" : " crashes\n");
      results[progress[child]] = isHung ? hung : crashed;
      progress[child] += processes;
      start(child);
    }
  }
  std::vector<Result> all(results, results + count);
  munmap(shared, size + 1);
  return all;
}

}  // namespace mirvane::campaign
