#include "platform/posix/datagram_sockets.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include "platform/posix/last_error.h"

namespace mirvane::platform {
namespace {

sockaddr_in endpoint(in_addr_t address, std::uint16_t port) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons(port);
  result.sin_addr.s_addr = address;
  return result;
}

bool sent(int handle, std::string_view bytes) { return ::send(handle, bytes.data(), bytes.size(), MSG_NOSIGNAL) >= 0; }

Granted granted(bool isGranted) { return isGranted ? Granted(true) : Granted(lastError()); }

}  // namespace

Attempt<std::int32_t> PosixDatagramSockets::create() {
  const int handle = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP);
  if (handle < 0) return lastError();
  return handle;
}

Granted PosixDatagramSockets::bind(std::int32_t handle, std::uint16_t port) {
  const sockaddr_in local = endpoint(INADDR_ANY, port);
  return granted(::bind(handle, reinterpret_cast<const sockaddr*>(&local), sizeof local) == 0);
}

Granted PosixDatagramSockets::connect(std::int32_t handle, const std::string& address, std::uint16_t port) {
  const sockaddr_in remote = endpoint(inet_addr(address.c_str()), port);
  return granted(::connect(handle, reinterpret_cast<const sockaddr*>(&remote), sizeof remote) == 0);
}

Granted PosixDatagramSockets::send(std::int32_t handle, std::string_view bytes) {
  // The next call reports that an earlier datagram was refused; this says nothing about the present one.
  return granted(sent(handle, bytes) || (errno == ECONNREFUSED && sent(handle, bytes)));
}

Attempt<std::string> PosixDatagramSockets::receive(std::int32_t handle, std::size_t most) {
  // Reading one more byte than requested reveals a datagram that is too long.
  std::string bytes(most + 1, '\0');
  const auto count = recv(handle, bytes.data(), bytes.size(), MSG_DONTWAIT);
  if (count < 0) return lastError();
  if (static_cast<std::size_t>(count) > most) return std::nullopt;
  bytes.resize(static_cast<std::size_t>(count));
  return bytes;
}

bool PosixDatagramSockets::waitReadable(std::int32_t handle, std::int16_t seconds) {
  using Time = std::chrono::steady_clock;
  const auto end = Time::now() + std::chrono::seconds(seconds);
  if (seconds < 0) return false;
  for (;;) {
    pollfd entry{handle, POLLIN, 0};
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Time::now()).count();
    if (poll(&entry, 1, static_cast<int>(std::max<std::int64_t>(left, 0))) <= 0) return false;
    char first = 0;
    if (recv(handle, &first, 1, MSG_PEEK | MSG_DONTWAIT) >= 0) return true;
    // The refusal of an earlier datagram makes the socket readable although there is no datagram; reading clears it.
    if (errno != ECONNREFUSED) return false;
  }
}

void PosixDatagramSockets::shutDown(std::int32_t handle) {
  // Sockets never get the handle of a standard stream: 0 stands for none.
  if (handle <= STDERR_FILENO) return;
  shutdown(handle, SHUT_RDWR);
  close(handle);
}

}  // namespace mirvane::platform
