#pragma once

#include <map>

#include "platform/ports.h"

namespace mirvane::platform {

/// Serial lines through termios; a name is a device path such as "/dev/ttyS0", or that of a pseudo-terminal.
class PosixSerialPort : public SerialPort {
 public:
  Attempt<std::int32_t> open(TextView name) override;
  bool setTimeouts(std::int32_t handle, const LineTimeouts& timeouts) override;
  Granted configure(std::int32_t handle, std::string_view settings) override;
  Attempt<std::size_t> write(std::int32_t handle, std::string_view bytes) override;
  Attempt<std::string> read(std::int32_t handle, std::size_t most) override;
  Attempt<std::size_t> waiting(std::int32_t handle) override;
  bool close(std::int32_t handle) override;

 private:
  std::map<std::int32_t, LineTimeouts> timeouts_;
};

}  // namespace mirvane::platform
