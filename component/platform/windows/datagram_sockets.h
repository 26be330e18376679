#pragma once

#include "platform/ports.h"

namespace mirvane::platform {

/// Windows Sockets 1.1.
class WindowsDatagramSockets : public DatagramSockets {
 public:
  Granted startUp() override;
  Attempt<std::int32_t> create() override;
  Granted bind(std::int32_t handle, std::uint16_t port) override;
  Granted connect(std::int32_t handle, const std::string& address, std::uint16_t port) override;
  Granted send(std::int32_t handle, std::string_view bytes) override;
  Attempt<std::string> receive(std::int32_t handle, std::size_t most) override;
  bool waitReadable(std::int32_t handle, std::int16_t seconds) override;
  void shutDown(std::int32_t handle) override;
};

}  // namespace mirvane::platform
