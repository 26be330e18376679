#pragma once

#include "link/transport.h"

namespace mirvane {

/// The shared network endpoint: ENQ, frame, the register's ACK and reply, ACK; each is one datagram.
class NetworkTransport : public Transport {
 public:
  bool write(std::string_view bytes) override;
  std::string read() override;
  bool hasDatagram() override;
  Exchange exchange(const std::string& frame, const Sending& sending, SilenceObserver& silence) override;
  Exchange attempt(const std::string& frame, double seconds) override;
  void acknowledge() override;
  bool losesSilently() const override { return true; }
  void trace(TextView /*label*/, TextView /*text*/) override {}

 private:
  bool hasUnread() override { return hasDatagram(); }
  void drop() override { read(); }
};

}  // namespace mirvane
