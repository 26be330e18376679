#pragma once

#include <memory>

#include "component/component.h"
#include "facade/fiscal_trevik_module.h"
#include "state/module_state.h"
#include "tests/end_to_end/emulator_process.h"

namespace mirvane::test {

using Short = std::int16_t;

/// The lines to a register: registers on the network acknowledge the frame, or the ENQ before it.
inline const auto kLines = testing::Values("serial", "network", "network_enq");
inline std::string lineName(const testing::TestParamInfo<const char*>& line) { return line.param; }

/// A till at the emulator, over the transport that is the test's parameter.
class Till : public testing::TestWithParam<const char*> {
 protected:
  Till() {
    moduleState() = ModuleState{};
    startComponent();
  }
  ~Till() override {
    if (facade) run("DisConnect_", fromUtf8(port));
    facade = nullptr;
    moduleState() = ModuleState{};
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
    Result = 77;
    facade->call(member, std::forward<A>(arguments)..., Result, Exresult, SupressError_);
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
    Text pass;
    facade->call("SendCommand_", command, Result, Exresult, SupressError_, pass);
    EXPECT_EQ(Result, 0) << toUtf8(Exresult);
    return toUtf8(Exresult).substr(9);
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
  std::shared_ptr<fiscalTrevikModule> facade = std::make_shared<fiscalTrevikModule>();
  std::string port;
  Short Result = 77;
  Text Exresult;
  bool SupressError_ = true;
};

}  // namespace mirvane::test
