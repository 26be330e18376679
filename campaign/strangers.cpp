#include "campaign/strangers.h"

#include "emulator/loopback.h"
#include "protocol/wire.h"

namespace mirvane::campaign {
namespace {

struct OtherDevice {
  explicit OtherDevice(platform::Clock& clock)
      : device(
            {}, [&clock] { return clock.localTime(); }, [&clock] { return clock.elapsed(); }) {
    device.fiscal().serialNumber = "MVE25000099";
  }

  emulator::Device device;
  emulator::Faults faults;
};

class OtherRegister : private OtherDevice, public emulator::LoopbackPort {
 public:
  explicit OtherRegister(platform::Clock& clock) : OtherDevice(clock), LoopbackPort(device, faults, clock) {}
};

/// Something that knows no command and answers all the same.
class Responder : public platform::SerialPort {
 public:
  using Answer = std::string (*)(std::string_view sent);
  Responder(platform::Clock& clock, Answer answer) : clock_(clock), answer_(answer) {}

  platform::Attempt<std::int32_t> open(TextView) override { return 1; }
  bool setTimeouts(std::int32_t, const platform::LineTimeouts&) override { return true; }
  platform::Granted configure(std::int32_t, std::string_view) override { return true; }
  platform::Attempt<std::size_t> write(std::int32_t, std::string_view bytes) override {
    input_ += answer_(bytes);
    return bytes.size();
  }
  platform::Attempt<std::string> read(std::int32_t, std::size_t most) override {
    constexpr std::uint32_t kIdle = 10;
    if (input_.empty()) clock_.sleep(kIdle);
    const std::string bytes = input_.substr(0, most);
    input_.erase(0, bytes.size());
    return bytes;
  }
  platform::Attempt<std::size_t> waiting(std::int32_t) override { return input_.size(); }
  bool close(std::int32_t) override { return true; }

 private:
  platform::Clock& clock_;
  const Answer answer_;
  std::string input_;
};

std::string sendBack(std::string_view sent) { return std::string(sent); }

std::string weigh(std::string_view sent) {
  return sent.ends_with(wire::kEnq) || sent.ends_with(wire::kEtx)
             ? wire::kStx + std::string("00/01.250/kg/") + wire::kEtx
             : std::string();
}

}  // namespace

std::unique_ptr<platform::SerialPort> makeStranger(Stranger stranger, platform::Clock& clock) {
  switch (stranger) {
    case Stranger::kRegister:
      return std::make_unique<OtherRegister>(clock);
    case Stranger::kLoopPlug:
      return std::make_unique<Responder>(clock, &sendBack);
    case Stranger::kScale:
      return std::make_unique<Responder>(clock, &weigh);
    default:
      return nullptr;
  }
}

}  // namespace mirvane::campaign
