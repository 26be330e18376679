#include "platform/windows/serial_port.h"

#include "platform/windows/windows.h"
#include "text/code_page.h"

namespace mirvane::platform {

std::int32_t WindowsSerialPort::open(TextView name) {
  return fromHandle(
      CreateFileA(toCodePage(name).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
}

bool WindowsSerialPort::setTimeouts(std::int32_t handle, const LineTimeouts& timeouts) {
  COMMTIMEOUTS limits{timeouts.readInterval, timeouts.readMultiplier, timeouts.readConstant, timeouts.writeMultiplier,
                      timeouts.writeConstant};
  return SetCommTimeouts(toHandle(handle), &limits) != FALSE;
}

bool WindowsSerialPort::configure(std::int32_t handle, std::string_view settings) {
  DCB state{};
  state.DCBlength = sizeof state;
  if (BuildCommDCBA(std::string(settings).c_str(), &state) == FALSE) return false;
  // The system takes no other than binary lines, and drivers of some adapters refuse two equal flow-control characters,
  // used or not.
  constexpr char kXon = 0x11;
  constexpr char kXoff = 0x13;
  state.fBinary = TRUE;
  state.XonChar = kXon;
  state.XoffChar = kXoff;
  return SetCommState(toHandle(handle), &state) != FALSE;
}

std::optional<std::size_t> WindowsSerialPort::write(std::int32_t handle, std::string_view bytes) {
  DWORD written = 0;
  if (WriteFile(toHandle(handle), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) == FALSE) {
    return std::nullopt;
  }
  return written;
}

std::optional<std::string> WindowsSerialPort::read(std::int32_t handle, std::size_t most) {
  std::string bytes(most, '\0');
  DWORD count = 0;
  if (ReadFile(toHandle(handle), bytes.data(), static_cast<DWORD>(most), &count, nullptr) == FALSE) return std::nullopt;
  bytes.resize(count);
  return bytes;
}

std::optional<std::size_t> WindowsSerialPort::waiting(std::int32_t handle) {
  DWORD errors = 0;
  COMSTAT state{};
  if (ClearCommError(toHandle(handle), &errors, &state) == FALSE) return std::nullopt;
  return state.cbInQue;
}

bool WindowsSerialPort::close(std::int32_t handle) { return CloseHandle(toHandle(handle)) != FALSE; }

}  // namespace mirvane::platform
