#pragma once

#include "platform/ports.h"

namespace mirvane::platform {

/// A communications port, opened for exclusive use and read synchronously.
class WindowsSerialPort : public SerialPort {
 public:
  std::int32_t open(TextView name) override;
  bool setTimeouts(std::int32_t handle, const LineTimeouts& timeouts) override;
  bool configure(std::int32_t handle, std::string_view settings) override;
  std::optional<std::size_t> write(std::int32_t handle, std::string_view bytes) override;
  std::optional<std::string> read(std::int32_t handle, std::size_t most) override;
  std::optional<std::size_t> waiting(std::int32_t handle) override;
  bool close(std::int32_t handle) override;
};

}  // namespace mirvane::platform
