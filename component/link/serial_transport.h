#pragma once

#include "link/transport.h"

namespace mirvane {

/// The serial line of the shared port handle: CAN CAN ENQ, frame, reply up to ETX, ACK.
class SerialTransport : public Transport {
 public:
  bool write(std::string_view bytes) override;
  std::string read() override;
  bool hasDatagram() override { return false; }
  Exchange exchange(const std::string& frame, const Sending& sending, SilenceObserver& silence) override;
  Exchange attempt(const std::string& frame, double seconds) override;
  void acknowledge() override;
  bool losesSilently() const override { return false; }
  void trace(TextView label, TextView text) override;

 private:
  bool hasUnread() override;
  void drop() override;
};

}  // namespace mirvane
