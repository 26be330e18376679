#pragma once

#include "platform/ports.h"

namespace mirvane::platform {

/// A communications port, opened for exclusive use and read synchronously.
class WindowsSerialPort : public SerialPort {
 public:
  Attempt<std::int32_t> open(TextView name) override;
  bool setTimeouts(std::int32_t handle, const LineTimeouts& timeouts) override;
  Granted configure(std::int32_t handle, std::string_view settings) override;
  Attempt<std::size_t> write(std::int32_t handle, std::string_view bytes) override;
  Attempt<std::string> read(std::int32_t handle, std::size_t most) override;
  Attempt<std::size_t> waiting(std::int32_t handle) override;
  bool close(std::int32_t handle) override;
};

}  // namespace mirvane::platform
