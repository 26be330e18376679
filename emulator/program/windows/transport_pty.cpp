#include "emulator/program/transport.h"

namespace mirvane::emulator {

std::unique_ptr<Transport> openPty(const std::string& /*link*/, const Wiring& /*wiring*/) {
  throw TransportError("pty: not available on Windows; use --serial and a pair of virtual ports");
}

}  // namespace mirvane::emulator
