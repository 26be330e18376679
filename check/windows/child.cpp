#include "check/child.h"

#include <stdexcept>

#include "platform/windows/windows.h"
#include "text/code_page.h"

namespace mirvane::check {
namespace {

// Processes in this job end with this program. If there is none (an old system, within another job), they end only with
// their objects.
HANDLE ownJob() {
  static const HANDLE job = [] {
    const HANDLE made = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(made, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return made;
  }();
  return job;
}

}  // namespace

struct Child::System {
  HANDLE process = nullptr;
  HANDLE output = nullptr;
};

Child::Child(const std::filesystem::path& program, const std::vector<std::string>& arguments,
             const std::filesystem::path& folder)
    : system_(std::make_unique<System>()) {
  std::wstring line = platform::quoted(program.wstring());
  for (const std::string& argument : arguments) line += L' ' + platform::quoted(toWide(fromUtf8(argument)));
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE written = nullptr;
  if (CreatePipe(&system_->output, &written, &inherited, 0) == FALSE) throw std::runtime_error("pipe");
  SetHandleInformation(system_->output, HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = written;
  PROCESS_INFORMATION made{};
  const BOOL started = CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                                      folder.empty() ? nullptr : folder.c_str(), &start, &made);
  const DWORD error = GetLastError();
  CloseHandle(written);
  if (started == FALSE) {
    CloseHandle(system_->output);
    throw std::runtime_error("error " + std::to_string(error));
  }
  AssignProcessToJobObject(ownJob(), made.hProcess);
  CloseHandle(made.hThread);
  system_->process = made.hProcess;
}

Child::~Child() {
  constexpr DWORD kEnds = 5000;
  TerminateProcess(system_->process, 1);
  WaitForSingleObject(system_->process, kEnds);
  CloseHandle(system_->process);
  CloseHandle(system_->output);
}

bool Child::take() {
  // Checked before the pipe is read: its last output is then read after its end.
  const bool hasEnded = WaitForSingleObject(system_->process, 0) == WAIT_OBJECT_0;
  for (DWORD count = 0; PeekNamedPipe(system_->output, nullptr, 0, nullptr, &count, nullptr) != FALSE && count > 0;) {
    std::string bytes(count, '\0');
    if (ReadFile(system_->output, bytes.data(), count, &count, nullptr) == FALSE) break;
    output_.append(bytes, 0, count);
  }
  return !hasEnded;
}

}  // namespace mirvane::check
