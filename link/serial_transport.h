#pragma once

#include "link/transport.h"

namespace mirvane {

/// The serial line of the shared port handle: CAN CAN ENQ, the frame, the reply up to ETX, ACK.
class SerialTransport : public Transport {
 public:
  bool write(std::string_view bytes) override;
  std::string read() override;
  bool hasDatagram() override { return false; }
  Exchange exchange(const std::string& frame, std::int16_t timeOut, SilenceObserver& silence) override;
  void trace(TextView label, TextView text) override;

 private:
  bool hasUnread() override;
  void drop() override;
  static void beginAttempt();
};

}  // namespace mirvane
