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

// Everything that the component asks of the machine. The core knows only these; platform/windows and platform/posix
// implement them for real, tests supply fakes.
namespace mirvane::platform {

/// Why the system refused what was asked of it, by its number and in its words; 0 and "" where it gave no reason.
struct SystemError {
  std::int32_t number = 0;
  Text text;
};

/// What a call of the system gave; nothing, and the reason, when it was refused.
template <class T>
class Attempt : public std::optional<T> {
 public:
  using std::optional<T>::optional;
  Attempt(SystemError why) : reason(std::move(why)) {}

  SystemError reason;
};

/// Whether the system did what was asked, and why not.
class Granted {
 public:
  Granted(bool isGranted) : is_(isGranted) {}
  Granted(SystemError why) : reason(std::move(why)), is_(false) {}
  explicit operator bool() const { return is_; }

  SystemError reason;

 private:
  bool is_;
};

/// Time-outs of a serial line in milliseconds, with the meaning that the Win32 call gives them: a read of n bytes ends
/// after readConstant + n * readMultiplier, or when readInterval passes between two bytes; a write likewise.
struct LineTimeouts {
  std::uint32_t readInterval;
  std::uint32_t readMultiplier;
  std::uint32_t readConstant;
  std::uint32_t writeMultiplier;
  std::uint32_t writeConstant;
};

/// A serial line behind a 32-bit handle greater than 0.
class SerialPort {
 public:
  virtual ~SerialPort() = default;

  /// Opens the port for this program alone. The handle; nothing when there is no such port or it is taken.
  virtual Attempt<std::int32_t> open(TextView name) = 0;
  virtual bool setTimeouts(std::int32_t handle, const LineTimeouts& timeouts) = 0;
  /// `settings` as in "115200,n,8,1": baud, parity, data bits, stop bits. False when the line cannot be set so.
  virtual Granted configure(std::int32_t handle, std::string_view settings) = 0;

  // These give nothing when the system reports a failure, as it does when an adapter was pulled out: the line is dead
  // and has to be closed and opened again. A time-out is no failure.

  /// The number of bytes that the line took within the write time-outs.
  virtual Attempt<std::size_t> write(std::int32_t handle, std::string_view bytes) = 0;
  /// At most `most` bytes, as many as arrived within the read time-outs.
  virtual Attempt<std::string> read(std::int32_t handle, std::size_t most) = 0;
  /// How many bytes can be read without waiting.
  virtual Attempt<std::size_t> waiting(std::int32_t handle) = 0;

  /// True when the handle was open and is closed now.
  virtual bool close(std::int32_t handle) = 0;
};

/// Connected datagram sockets behind 32-bit handles, with the calls and failures of Windows Sockets 1.1.
class DatagramSockets {
 public:
  virtual ~DatagramSockets() = default;

  /// Starts the socket library; every successful start is paired with one `shutDown`.
  virtual Granted startUp() = 0;
  /// The handle of a new datagram socket.
  virtual Attempt<std::int32_t> create() = 0;
  /// Binds to all local interfaces; port 0 lets the system choose.
  virtual Granted bind(std::int32_t handle, std::uint16_t port) = 0;
  /// `address` is dotted-decimal IPv4; any other text stands for 255.255.255.255.
  virtual Granted connect(std::int32_t handle, const std::string& address, std::uint16_t port) = 0;
  /// False on a socket error. A short send counts as sent.
  virtual Granted send(std::int32_t handle, std::string_view bytes) = 0;
  /// One datagram; nothing on a socket error, which a datagram longer than `most` is too.
  virtual Attempt<std::string> receive(std::int32_t handle, std::size_t most) = 0;
  /// Whether a datagram is there before `seconds` have passed; 0 does not wait. False on a socket error too.
  virtual bool waitReadable(std::int32_t handle, std::int16_t seconds) = 0;
  /// Shuts the socket down in both directions, closes it and releases the socket library; failures, such as a handle
  /// that is no open socket, are ignored.
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

/// What the operator reads while the device is busy.
struct WaitText {
  Text caption;
  /// What is waited for, and the device's code.
  Text state;
  /// The device's own words.
  Text message;
};

// Styles of a message box, in the system's numbers.
constexpr std::uint32_t kCritical = 16;
constexpr std::uint32_t kExclamation = 48;
constexpr std::uint32_t kInformationSystemModal = 4160;

/// The window that shows a journal while it comes from the device. It closes when it is destroyed.
class JournalView {
 public:
  virtual ~JournalView() = default;

  /// The text that follows belongs to this file.
  virtual void beginFile(TextView name) = 0;
  /// `count`: the characters of the whole journal received so far, this piece included.
  virtual void append(TextView piece, std::size_t count) = 0;
  /// Lets the program's windows do what is pending.
  virtual void processEvents() = 0;
};

/// The window in which the operator reads it.
class WaitView {
 public:
  virtual ~WaitView() = default;

  /// Shows another text.
  virtual void show(const WaitText& text) = 0;
  /// Paints this window and serves the program's own, as Screen::serveWindows. Input is dropped: it was meant for
  /// windows that cannot be used now.
  virtual void repaint() = 0;
};

/// Whoever stands in front of the till.
class Screen {
 public:
  virtual ~Screen() = default;

  /// Shows a box and waits until it is closed.
  virtual void messageBox(TextView prompt, std::uint32_t style, TextView title) = 0;
  /// Shows `text` in a modal window above all others, which the operator cannot close, and calls `tick` with it every
  /// second until that returns false.
  virtual void waitWhile(const WaitText& text, const std::function<bool(WaitView&)>& tick) = 0;
  /// The same window, which stands while the caller goes on and closes when it is destroyed. It does not take the
  /// focus: whoever stands at the till did nothing to have it appear.
  virtual std::unique_ptr<WaitView> showWait(const WaitText& text) = 0;
  virtual std::unique_ptr<JournalView> showJournal() = 0;
  /// Paints the program's own windows of this thread and serves what other threads send to them, for 50 ms at most, so
  /// that the system does not take the program for dead. Input stays in the queue; no timer runs.
  virtual void serveWindows() = 0;
  /// Opens the window of the debug trace, where there is one, or closes it. Whether the operator has closed it does not
  /// matter: opening it again is allowed.
  virtual void showTrace(bool shown) = 0;
  /// One line of the debug trace: to the window when it is open, and to whoever watches the program.
  virtual void traceLine(TextView line) = 0;
};

/// A file that grows at its end, by this one alone; others may read, rename and remove it meanwhile. It is closed when
/// it is destroyed.
class GrowingFile {
 public:
  virtual ~GrowingFile() = default;

  virtual std::uint64_t size() = 0;
  /// How many of the bytes were written, from the first on: fewer than all when the disk is full.
  virtual std::size_t append(std::string_view bytes) = 0;
};

/// Paths are those of the machine that tills run on: "\\" between folders. Any thread may ask.
class Files {
 public:
  virtual ~Files() = default;

  /// The folder of the component itself, with no separator at its end.
  virtual Text componentFolder() = 0;
  /// The whole file, or nothing when it cannot be read.
  virtual std::optional<std::string> read(TextView path) = 0;
  /// Makes the folder and those above it where they are missing; `folder` ends in a separator. False when it is not
  /// there afterwards.
  virtual bool makeFolder(TextView folder) = 0;
  /// Makes `bytes` the whole content of the file, on the disk before it returns. Whatever happens meanwhile, the file
  /// is whole: the new one, or after a failure (false) the old one or none.
  virtual bool replace(TextView path, std::string_view bytes) = 0;
  virtual bool isFolder(TextView folder) = 0;
  /// The names of the files in a folder, in any order.
  virtual std::vector<Text> fileNames(TextView folder) = 0;
  /// The size of a file in bytes; nothing when there is no file of that name, or none any more.
  virtual std::optional<std::uint64_t> fileSize(TextView path) = 0;
  /// Opens a file for more at its end, and makes it where it is missing; null when it cannot be, or grows already, in
  /// whichever program.
  virtual std::unique_ptr<GrowingFile> grow(TextView path) = 0;
  /// Removes a file, unless it grows, in whichever program.
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
  /// Its file, without the folder.
  Text name;
};
Process hostProcess();

}  // namespace mirvane::platform
