#include "emulator/program/command_line.h"
#include "emulator/program/web.h"

namespace mirvane::emulator {

std::unique_ptr<Web> openWeb(boost::asio::io_context& /*loop*/, Station& /*station*/, const Web::Options& /*options*/) {
  throw UsageError("this program was built without --web and --log");
}

}  // namespace mirvane::emulator
