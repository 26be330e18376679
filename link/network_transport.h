#pragma once

#include "link/transport.h"

namespace mirvane {

/// The shared network endpoint: ENQ, the frame, the device's ACK and reply, ACK, each a datagram.
class NetworkTransport : public Transport {
 public:
  bool write(std::string_view bytes) override;
  std::string read() override;
  bool hasDatagram() override;
  Exchange exchange(const std::string& frame, std::int16_t timeOut, SilenceObserver& silence) override;
  void trace(TextView /*label*/, TextView /*text*/) override {}

 private:
  bool hasUnread() override { return hasDatagram(); }
  void drop() override { read(); }
};

}  // namespace mirvane
