#include "platform/posix/serial_line.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include "platform/posix/last_error.h"
#include "text/code_page.h"

namespace mirvane::platform {
namespace {

using Time = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Whether `handle` becomes ready for `events` before `deadline`. A line that has disappeared also counts as ready.
bool ready(int handle, short events, Time::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Time::now()).count();
    const timespec timeout{std::max<long>(left, 0) / 1000000, std::max<long>(left, 0) % 1000000 * 1000};
    pollfd entry{handle, events, 0};
    const int count = ppoll(&entry, 1, &timeout, nullptr);
    if (count > 0) return true;
    if (count == 0 || errno != EINTR) return false;
  }
}

}  // namespace

Attempt<std::int32_t> PosixSerialPort::open(TextView name) {
  const int handle = ::open(toUtf8(name).c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (handle < 0) return lastError();
  // Exclusively, as on Windows.
  if (isatty(handle) == 0 || flock(handle, LOCK_EX | LOCK_NB) != 0) {
    SystemError reason = lastError();
    ::close(handle);
    return reason;
  }
  timeouts_[handle] = {};
  return handle;
}

bool PosixSerialPort::setTimeouts(std::int32_t handle, const LineTimeouts& timeouts) {
  const auto line = timeouts_.find(handle);
  if (line == timeouts_.end()) return false;
  line->second = timeouts;
  return true;
}

Granted PosixSerialPort::configure(std::int32_t handle, std::string_view settings) {
  // The only settings that this component uses.
  if (settings != "115200,n,8,1") return false;
  termios line{};
  if (tcgetattr(handle, &line) != 0) return lastError();
  cfmakeraw(&line);
  line.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
  line.c_cflag |= CLOCAL | CREAD;
  line.c_cc[VMIN] = 0;
  line.c_cc[VTIME] = 0;
  cfsetispeed(&line, B115200);
  cfsetospeed(&line, B115200);
  if (tcsetattr(handle, TCSANOW, &line) != 0) return lastError();
  return true;
}

Attempt<std::size_t> PosixSerialPort::write(std::int32_t handle, std::string_view bytes) {
  const LineTimeouts& limits = timeouts_[handle];
  const auto deadline = Time::now() + milliseconds(limits.writeConstant + limits.writeMultiplier * bytes.size());
  std::size_t written = 0;
  while (written < bytes.size()) {
    const auto count = ::write(handle, bytes.data() + written, bytes.size() - written);
    if (count > 0) {
      written += static_cast<std::size_t>(count);
    } else if (count < 0 && errno == EINTR) {
      continue;
    } else if (count < 0 && errno != EAGAIN) {
      return lastError();
    } else if (!ready(handle, POLLOUT, deadline)) {
      break;
    }
  }
  return written;
}

Attempt<std::string> PosixSerialPort::read(std::int32_t handle, std::size_t most) {
  const LineTimeouts& limits = timeouts_[handle];
  const auto deadline = Time::now() + milliseconds(limits.readConstant + limits.readMultiplier * most);
  std::string bytes;
  auto until = deadline;
  while (bytes.size() < most && ready(handle, POLLIN, until)) {
    const std::size_t before = bytes.size();
    bytes.resize(most);
    const auto count = ::read(handle, bytes.data() + before, most - before);
    bytes.resize(before + static_cast<std::size_t>(std::max<decltype(count)>(count, 0)));
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count < 0) return lastError();
    if (count == 0) return std::nullopt;  // hung up
    until = std::min(deadline, Time::now() + milliseconds(limits.readInterval));
  }
  return bytes;
}

Attempt<std::size_t> PosixSerialPort::waiting(std::int32_t handle) {
  int count = 0;
  if (ioctl(handle, FIONREAD, &count) != 0) return lastError();
  return static_cast<std::size_t>(count);
}

bool PosixSerialPort::close(std::int32_t handle) { return timeouts_.erase(handle) == 1 && ::close(handle) == 0; }

}  // namespace mirvane::platform
