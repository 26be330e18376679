#pragma once

#include <memory>

#include "embedding/component.h"
#include "embedding/till.h"
#include "records/cls_status.h"
#include "tests/end_to_end/emulator_process.h"
#include "text/code_page.h"

namespace mirvane::test {

using Short = std::int16_t;

/// The lines to a register: registers on the network acknowledge the frame, or the ENQ before it.
inline const auto kLines = testing::Values("serial", "network", "network_enq");
inline std::string lineName(const testing::TestParamInfo<const char*>& line) { return line.param; }

/// A till at the emulator, over the transport that is the test's parameter.
class Till : public testing::TestWithParam<const char*> {
 protected:
  ~Till() override {
    if (till) run("DisConnect_", fromUtf8(port));
    till.reset();
    component.reset();
    EXPECT_EQ(Object::liveCount(), 0) << "objects leak";
  }

  /// Starts a register with further options that misbehaves as `faults` tell, and connects to it.
  /// A serial line has a name of its own, which outlives an unplugging, where `link` gives it one.
  void start(const std::vector<std::string>& faults = {}, std::vector<std::string> options = {},
             const std::string& link = "") {
    if (isNetwork) {
      options.insert(options.end(), {"--udp", "0", "--acknowledge", acknowledgesEnq ? "enq" : "frame"});
    } else {
      options.emplace_back("--pty");
      if (!link.empty()) options.push_back(link);
    }
    for (const std::string& rule : faults) options.insert(options.end(), {"--fault", rule});
    emulator = std::make_unique<EmulatorProcess>(options);
    port = isNetwork || link.empty() ? emulator->port() : link;
    ASSERT_EQ(run("Connect_", fromUtf8(port)), 0) << port;
  }
  template <class... A>
  Short run(const char* member, A&&... arguments) {
    till->call(member, std::forward<A>(arguments)...);
    return Result;
  }
  template <class... A>
  void succeed(const char* member, A&&... arguments) {
    EXPECT_EQ(run(member, std::forward<A>(arguments)...), 0) << member << " " << toUtf8(Exresult);
  }
  Short sell(const char16_t* description, double quantity, double price, double rate = 24) {
    return run("ItemSale", description, quantity, price, rate, 1);
  }
  Short pay(Short number, double amount) { return run("Payment", number, u"", amount, 0, 0); }
  /// The fields of the reply to a command of the program's own.
  std::string ask(const char16_t* command) {
    succeed("SendCommand_", command);
    return toUtf8(Exresult).substr(9);
  }
  std::shared_ptr<clsStatus> status() {
    return std::dynamic_pointer_cast<clsStatus>(std::get<ObjectPtr>(till->read("StatusRead")));
  }
  void expectPaper(const std::vector<std::string>& pieces) const {
    std::string rest = emulator->paper();
    for (const std::string& piece : pieces) {
      ASSERT_NE(rest.find(piece), std::string::npos) << "no (further) " << piece << " in\n" << rest;
      rest = rest.substr(rest.find(piece) + piece.size());
    }
  }

  const bool acknowledgesEnq = std::string("network_enq") == GetParam();
  const bool isNetwork = acknowledgesEnq || std::string("network") == GetParam();

  std::unique_ptr<EmulatorProcess> emulator;
  std::optional<embedding::Component> component{std::in_place};
  std::optional<embedding::Till> till{std::in_place};
  std::string port;
  Short& Result = till->Result;
  Text& Exresult = till->Exresult;
};

}  // namespace mirvane::test
