#pragma once

#include "facade/fiscal_trevik_module.h"
#include "link/open_port.h"
#include "session/wait_window.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"

namespace mirvane::test {

const std::string kAck(1, wire::kAck), kNak(1, wire::kNak), kEnq(1, wire::kEnq), kCan(1, wire::kCan),
    kStx(1, wire::kStx), kEtx(1, wire::kEtx);

class Link : public DriverTest {
 protected:
  /// One exchange at the link's own level. Returns the reply.
  std::string transfer(Text command, Short timeOut = 0) {
    Result = 77;
    return toUtf8(convertTo<Text>(driver->call("Send_", command, Result, Exresult, SupressError_, Pass, timeOut)));
  }
  std::vector<std::string> sent() const {
    std::vector<std::string> bytes;
    for (const Sent& piece : serial.sent) bytes.push_back(piece.bytes);
    return bytes;
  }
};

}  // namespace mirvane::test
