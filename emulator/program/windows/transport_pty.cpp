#include "emulator/program/transport.h"

namespace mirvane::emulator {

std::unique_ptr<Transport> openPty(const std::string& /*link*/, const Wiring& /*wiring*/) {
  throw TransportError("pty: Windows has none; a pair of virtual ports and --serial do the same");
}

}  // namespace mirvane::emulator
