#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "text/text.h"

// Everything that the component needs from the machine. The core knows only these interfaces; platform/windows and
// platform/posix implement them, and tests supply fakes.
namespace mirvane::platform {

/// Why the system refused a request: its error number and text; 0 and "" if it gave no reason.
struct SystemError {
  std::int32_t number = 0;
  Text text;
};

/// The result of a system call; nothing, and the reason, if the system refused.
template <class T>
class Attempt : public std::optional<T> {
 public:
  using std::optional<T>::optional;
  Attempt(SystemError why) : reason(std::move(why)) {}

  SystemError reason;
};

/// Whether the system granted a request, and if not, why.
class Granted {
 public:
  Granted(bool isGranted) : is_(isGranted) {}
  Granted(SystemError why) : reason(std::move(why)), is_(false) {}
  explicit operator bool() const { return is_; }

  SystemError reason;

 private:
  bool is_;
};

/// Time-outs of a serial line in milliseconds, as in the Win32 call: a read of n bytes ends after readConstant + n *
/// readMultiplier, or when readInterval passes between two bytes; a write likewise.
struct LineTimeouts {
  std::uint32_t readInterval;
  std::uint32_t readMultiplier;
  std::uint32_t readConstant;
  std::uint32_t writeMultiplier;
  std::uint32_t writeConstant;
};

/// A serial line, identified by a 32-bit handle above 0.
class SerialPort {
 public:
  virtual ~SerialPort() = default;

  /// Opens the port exclusively and returns its handle; nothing if there is no such port or it is in use.
  virtual Attempt<std::int32_t> open(TextView name) = 0;
  virtual bool setTimeouts(std::int32_t handle, const LineTimeouts& timeouts) = 0;
  /// `settings` as in "115200,n,8,1": baud, parity, data bits, stop bits. Fails if the line does not support them.
  virtual Granted configure(std::int32_t handle, std::string_view settings) = 0;

  // These return nothing if the system reports a failure, as it does when an adapter is unplugged: the line is dead and
  // must be closed and reopened. A time-out is not a failure.

  /// The number of bytes that the line accepted within the write time-outs.
  virtual Attempt<std::size_t> write(std::int32_t handle, std::string_view bytes) = 0;
  /// At most `most` bytes: those that arrived within the read time-outs.
  virtual Attempt<std::string> read(std::int32_t handle, std::size_t most) = 0;
  /// The number of bytes that can be read without waiting.
  virtual Attempt<std::size_t> waiting(std::int32_t handle) = 0;

  /// True if the handle was open and is now closed.
  virtual bool close(std::int32_t handle) = 0;
};

/// Connected datagram sockets, identified by 32-bit handles, with the calls and failures of Windows Sockets 1.1.
class DatagramSockets {
 public:
  virtual ~DatagramSockets() = default;

  /// Starts the socket library; each successful start needs one `shutDown`.
  virtual Granted startUp() = 0;
  /// Creates a datagram socket and returns its handle.
  virtual Attempt<std::int32_t> create() = 0;
  /// Binds to all local interfaces; port 0 lets the system choose.
  virtual Granted bind(std::int32_t handle, std::uint16_t port) = 0;
  /// `address` is dotted-decimal IPv4; any other text means 255.255.255.255.
  virtual Granted connect(std::int32_t handle, const std::string& address, std::uint16_t port) = 0;
  /// Fails on a socket error. A short send counts as sent.
  virtual Granted send(std::int32_t handle, std::string_view bytes) = 0;
  /// One datagram; nothing on a socket error, or if the datagram is longer than `most`.
  virtual Attempt<std::string> receive(std::int32_t handle, std::size_t most) = 0;
  /// Whether a datagram arrives within `seconds`; 0 does not wait. False on a socket error.
  virtual bool waitReadable(std::int32_t handle, std::int16_t seconds) = 0;
  /// Shuts the socket down in both directions, closes it and releases the socket library. Ignores failures, such as a
  /// handle that is not an open socket.
  virtual void shutDown(std::int32_t handle) = 0;
};

struct LocalTime {
  int year, month, day, hour, minute, second;
};

class Clock {
 public:
  virtual ~Clock() = default;

  /// Local time of day in seconds, 0 up to 86400, with a fraction.
  virtual double secondsSinceMidnight() = 0;
  /// Seconds since some fixed moment; never set back, for measuring how long something takes.
  virtual double elapsed() = 0;
  virtual LocalTime localTime() = 0;
  /// Milliseconds since 1970, UTC.
  virtual std::int64_t sinceEpoch() = 0;
  /// How many minutes local time is ahead of UTC at that moment.
  virtual int zoneAt(std::int64_t sinceEpoch) = 0;
  virtual void sleep(std::uint32_t milliseconds) = 0;
};

/// What the operator reads while the register is busy.
struct WaitText {
  Text caption;
  /// What the till waits for, and the register's code.
  Text state;
  /// The register's own message.
  Text message;
};

// Styles of a message box, with the system's numbers.
constexpr std::uint32_t kCritical = 16;
constexpr std::uint32_t kExclamation = 48;
constexpr std::uint32_t kInformationSystemModal = 4160;

/// The window that shows a journal during its transfer. It closes when destroyed.
class JournalView {
 public:
  virtual ~JournalView() = default;

  /// The text that follows belongs to this file.
  virtual void beginFile(TextView name) = 0;
  /// `count`: number of characters of the whole journal so far, this piece included.
  virtual void append(TextView piece, std::size_t count) = 0;
  /// Lets the program's windows process pending messages.
  virtual void processEvents() = 0;
};

/// The wait window.
class WaitView {
 public:
  virtual ~WaitView() = default;

  /// Replaces the text.
  virtual void show(const WaitText& text) = 0;
  /// Paints this window and serves the program's own windows, as Screen::serveWindows does. Input is dropped: it was
  /// meant for windows that cannot be used now.
  virtual void repaint() = 0;
};

/// The screen of the till, and the operator in front of it.
class Screen {
 public:
  virtual ~Screen() = default;

  /// Shows a message box and waits until it is closed.
  virtual void messageBox(TextView prompt, std::uint32_t style, TextView title) = 0;
  /// Shows `text` in a modal window on top of all others, which the operator cannot close, and calls `tick` every
  /// second until that returns false.
  virtual void waitWhile(const WaitText& text, const std::function<bool(WaitView&)>& tick) = 0;
  /// Shows the same window while the caller continues; it closes when destroyed. It does not take the focus, because
  /// the operator did nothing to make it appear.
  virtual std::unique_ptr<WaitView> showWait(const WaitText& text) = 0;
  virtual std::unique_ptr<JournalView> showJournal() = 0;
  /// Paints the program's own windows of this thread and serves what other threads send to them, for at most 50 ms, so
  /// that the system does not report the program as not responding. Input stays in the queue; no timer runs.
  virtual void serveWindows() = 0;
  /// Opens or closes the window of the debug trace, if there is one. Opening works again after the operator has closed
  /// it.
  virtual void showTrace(bool shown) = 0;
  /// Writes one line of the debug trace: to the window if it is open, and to the debugger.
  virtual void traceLine(TextView line) = 0;
};

/// A file that only this object appends to; others may read, rename and remove it meanwhile. It closes when destroyed.
class GrowingFile {
 public:
  virtual ~GrowingFile() = default;

  virtual std::uint64_t size() = 0;
  /// Returns how many of the bytes were written, from the first on: fewer than all if the disk is full.
  virtual std::size_t append(std::string_view bytes) = 0;
};

/// Paths are those of the till's machine, with "\\" between folders. Any thread may call.
class Files {
 public:
  virtual ~Files() = default;

  /// The folder of the component itself, without a separator at its end.
  virtual Text componentFolder() = 0;
  /// The whole file; nothing if it cannot be read.
  virtual std::optional<std::string> read(TextView path) = 0;
  /// Creates the folder and the missing ones above it; `folder` ends in a separator. False if it does not exist
  /// afterwards.
  virtual bool makeFolder(TextView folder) = 0;
  /// Makes `bytes` the whole content of the file, on the disk before it returns. The file is always complete: the new
  /// one or, after a failure (false), the old one or none.
  virtual bool replace(TextView path, std::string_view bytes) = 0;
  virtual bool isFolder(TextView folder) = 0;
  /// The names of the files in a folder, in no particular order.
  virtual std::vector<Text> fileNames(TextView folder) = 0;
  /// The size of a file in bytes; nothing if there is no such file.
  virtual std::optional<std::uint64_t> fileSize(TextView path) = 0;
  /// Opens a file for appending and creates it if it is missing; null if that fails or if any program already appends
  /// to it.
  virtual std::unique_ptr<GrowingFile> grow(TextView path) = 0;
  /// Removes a file, unless some program appends to it.
  virtual void remove(TextView path) = 0;
};

struct Platform {
  SerialPort& serial;
  DatagramSockets& sockets;
  Clock& clock;
  Screen& screen;
  Files& files;
};

/// The machine that the program runs on.
Platform& hostPlatform();

/// The program that the component runs in.
struct Process {
  std::int32_t id = 0;
  /// Its file name, without the folder.
  Text name;
};
Process hostProcess();

}  // namespace mirvane::platform
