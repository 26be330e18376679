#include "platform/windows/datagram_sockets.h"

#include <winsock.h>

#include <algorithm>

#include "platform/windows/windows.h"

namespace mirvane::platform {
namespace {

constexpr WORD kVersion = 0x0101;
constexpr int kBothDirections = 2;

SOCKET toSocket(std::int32_t handle) { return static_cast<SOCKET>(static_cast<std::intptr_t>(handle)); }

sockaddr_in addressOf(std::uint32_t host, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = host;
  return address;
}

// The register was not listening when an earlier datagram arrived. The system reports this once, at the next call on
// the socket, whichever that is.
bool toldOfEarlierDatagram() {
  const int error = WSAGetLastError();
  return error == WSAECONNRESET || error == WSAECONNREFUSED;
}

Granted granted(bool isGranted) { return isGranted ? Granted(true) : Granted(lastError()); }

}  // namespace

Granted WindowsDatagramSockets::startUp() {
  WSADATA data{};
  return granted(WSAStartup(kVersion, &data) == 0);
}

Attempt<std::int32_t> WindowsDatagramSockets::create() {
  const SOCKET handle = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
  if (handle == INVALID_SOCKET) return lastError();
  return static_cast<std::int32_t>(handle);
}

Granted WindowsDatagramSockets::bind(std::int32_t handle, std::uint16_t port) {
  const sockaddr_in address = addressOf(INADDR_ANY, port);
  return granted(::bind(toSocket(handle), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0);
}

Granted WindowsDatagramSockets::connect(std::int32_t handle, const std::string& address, std::uint16_t port) {
  const sockaddr_in remote = addressOf(inet_addr(address.c_str()), port);
  return granted(::connect(toSocket(handle), reinterpret_cast<const sockaddr*>(&remote), sizeof remote) == 0);
}

Granted WindowsDatagramSockets::send(std::int32_t handle, std::string_view bytes) {
  const auto sent = [&] {
    return ::send(toSocket(handle), bytes.data(), static_cast<int>(bytes.size()), 0) != SOCKET_ERROR;
  };
  return granted(sent() || (toldOfEarlierDatagram() && sent()));
}

Attempt<std::string> WindowsDatagramSockets::receive(std::int32_t handle, std::size_t most) {
  std::string bytes(most, '\0');
  const int count = recv(toSocket(handle), bytes.data(), static_cast<int>(most), 0);
  if (count == SOCKET_ERROR) return lastError();
  bytes.resize(static_cast<std::size_t>(count));
  return bytes;
}

bool WindowsDatagramSockets::waitReadable(std::int32_t handle, std::int16_t seconds) {
  // In short waits: after an error Wine would sleep past the next datagram.
  constexpr ULONGLONG kPiece = 100;
  if (seconds < 0) return false;
  const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(seconds) * 1000;
  ULONGLONG now = 0;
  do {
    now = GetTickCount64();
    fd_set readable{};
    readable.fd_count = 1;
    readable.fd_array[0] = toSocket(handle);
    fd_set none{};
    timeval limit{0, static_cast<long>(std::min(end - std::min(now, end), kPiece) * 1000)};
    const int count = select(0, &readable, &none, &none, &limit);
    if (count == SOCKET_ERROR) return false;
    char first = 0;
    // What select saw may be an earlier datagram's error, which peeking clears. A datagram longer than the buffer is
    // there too.
    const bool isThere =
        count > 0 && (recv(toSocket(handle), &first, 1, MSG_PEEK) != SOCKET_ERROR || WSAGetLastError() == WSAEMSGSIZE);
    if (isThere) return true;
    if (count > 0 && !toldOfEarlierDatagram()) return false;
  } while (now < end);
  return false;
}

void WindowsDatagramSockets::shutDown(std::int32_t handle) {
  shutdown(toSocket(handle), kBothDirections);
  closesocket(toSocket(handle));
  WSACancelBlockingCall();
  WSACleanup();
}

}  // namespace mirvane::platform
