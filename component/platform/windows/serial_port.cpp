#include "platform/windows/serial_port.h"

#include "platform/windows/windows.h"
#include "text/code_page.h"

namespace mirvane::platform {

Attempt<std::int32_t> WindowsSerialPort::open(TextView name) {
  const HANDLE line =
      CreateFileA(toCodePage(name).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (line == INVALID_HANDLE_VALUE) return lastError();
  return fromHandle(line);
}

bool WindowsSerialPort::setTimeouts(std::int32_t handle, const LineTimeouts& timeouts) {
  COMMTIMEOUTS limits{timeouts.readInterval, timeouts.readMultiplier, timeouts.readConstant, timeouts.writeMultiplier,
                      timeouts.writeConstant};
  return SetCommTimeouts(toHandle(handle), &limits) != FALSE;
}

Granted WindowsSerialPort::configure(std::int32_t handle, std::string_view settings) {
  DCB state{};
  state.DCBlength = sizeof state;
  if (BuildCommDCBA(std::string(settings).c_str(), &state) == FALSE) return lastError();
  // The system supports only binary lines, and some adapters' drivers refuse two equal flow-control characters even if
  // they are not used.
  constexpr char kXon = 0x11;
  constexpr char kXoff = 0x13;
  state.fBinary = TRUE;
  state.XonChar = kXon;
  state.XoffChar = kXoff;
  if (SetCommState(toHandle(handle), &state) == FALSE) return lastError();
  return true;
}

Attempt<std::size_t> WindowsSerialPort::write(std::int32_t handle, std::string_view bytes) {
  DWORD written = 0;
  if (WriteFile(toHandle(handle), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) == FALSE) {
    return lastError();
  }
  return std::size_t{written};
}

Attempt<std::string> WindowsSerialPort::read(std::int32_t handle, std::size_t most) {
  std::string bytes(most, '\0');
  DWORD count = 0;
  if (ReadFile(toHandle(handle), bytes.data(), static_cast<DWORD>(most), &count, nullptr) == FALSE) return lastError();
  bytes.resize(count);
  return bytes;
}

Attempt<std::size_t> WindowsSerialPort::waiting(std::int32_t handle) {
  DWORD errors = 0;
  COMSTAT state{};
  if (ClearCommError(toHandle(handle), &errors, &state) == FALSE) return lastError();
  return std::size_t{state.cbInQue};
}

bool WindowsSerialPort::close(std::int32_t handle) { return CloseHandle(toHandle(handle)) != FALSE; }

}  // namespace mirvane::platform
