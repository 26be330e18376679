#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "component/component.h"
#include "driver/fiscal_varlen_module2.h"
#include "embedding/component.h"
#include "embedding/till.h"
#include "link/network_endpoint.h"
#include "tests/fakes/fake_line.h"
#include "tests/fakes/strings.h"
#include "text/code_page.h"

namespace mirvane::test {

using testing::ElementsAre;
using testing::IsEmpty;

using Short = std::int16_t;
using Long = std::int32_t;
using Byte = std::uint8_t;

const std::string kWrongDevice = "Λάθος τύπος Φορολ. Εκτυπωτή";

/// Runs `call` and tells the automation error that it raised; 0 for none.
template <class F>
std::uint32_t errorOf(F call) {
  try {
    call();
    return 0;
  } catch (const AutomationError& error) {
    return static_cast<std::uint32_t>(error.code());
  }
}
constexpr std::uint32_t kMemberNotFound = 0x80020003, kTypeMismatch = 0x80020005, kOverflow = 0x8002000A,
                        kBadIndex = 0x8002000B;

inline void put(Object& object, std::string_view property, Value value) {
  const Argument argument[] = {Argument(std::move(value))};
  object.invoke(property, ClassInfo::Access::write, argument);
}

/// What a driver's StatusRead is.
inline std::shared_ptr<clsStatus> statusOf(Object& driver) {
  return std::dynamic_pointer_cast<clsStatus>(std::get<ObjectPtr>(driver.call("StatusRead")));
}

/// The component, freshly started on a machine of fakes. Whoever leaves an object behind fails.
class ComponentTest : public testing::Test {
 protected:
  ComponentTest() {
    files.setCatalogue(2, {{2, "Τίτλος"}, {180, "Κλειστή θύρα"}, {182, "Ρύθμιση :"}}, 92);
    component.emplace(machine);
  }
  ~ComponentTest() override {
    component.reset();
    EXPECT_EQ(Object::liveCount(), liveBefore_) << "objects leak";
  }

  /// Calls a member that tells an outcome.
  template <class... A>
  Value run(Object& object, std::string_view member, A&&... arguments) {
    Result = 77;
    Exresult = u"before";
    return embedding::callWithOutcome(object, member, Result, Exresult, SupressError_, std::forward<A>(arguments)...);
  }
  std::string exresult() const { return toUtf8(Exresult); }
  /// Result and Exresult, as in "20 Z closure time limit".
  std::string outcome() const { return std::to_string(Result) + " " + exresult(); }
  /// The box that a caller is shown who has not suppressed it.
  std::vector<Box> unlessSuppressed(const Box& box) const {
    return SupressError_ ? std::vector<Box>{} : std::vector{box};
  }

  FakeClock clock;
  FakeDevice device;
  FakeSerial serial{device, clock};
  FakeSockets sockets{device, clock};
  FakeScreen screen{clock};
  FakeFiles files;
  platform::Platform machine{serial, sockets, clock, screen, files};
  std::optional<embedding::Component> component;

  Short Result = 77;
  Text Exresult = u"before";
  bool SupressError_ = true;
  Text Pass;

 private:
  // Freed first: the state of an earlier test.
  const int liveBefore_ = (moduleState() = ModuleState{}, Object::liveCount());
};

/// A driver connected to the fake device over COM1.
class DriverTest : public ComponentTest {
 protected:
  DriverTest() { connect(u"COM1"); }

  void connect(TextView port) {
    moduleState().currentDriver = driver;
    run(*driver, "Connect_", port);
    EXPECT_EQ(Result, 0) << exresult();
  }
  void connectNetwork() {
    run(*driver, "DisConnect_", u"");
    connect(u"10.0.0.5:9100");
  }
  /// Calls a member of the driver, or of the facade, and returns the commands that it sends. The operator has seen
  /// nothing before.
  template <class... A>
  std::vector<std::string> call(std::string_view member, A&&... arguments) {
    device.commands.clear();
    screen.boxes.clear();
    run(*called, member, std::forward<A>(arguments)...);
    return device.commands;
  }
  /// The device's next replies, in UTF-8, behind one and the same code and status bytes.
  void answers(const std::vector<std::string>& replies, const std::string& status = "00/00/00/") {
    for (const std::string& fields : replies) device.answer(toCodePage(fromUtf8(status + fields)));
  }
  /// Sends a command text as a program does.
  void send(TextView command) { run(*driver, "SendCommand_", command); }
  void exchange(const std::string& reply) {
    device.answer(reply);
    send(u"?/");
  }

  std::shared_ptr<FiscalVarlenModule2> driver = std::make_shared<FiscalVarlenModule2>();
  ObjectPtr called = driver;
};

/// What the driver says of a failure unless it is suppressed.
inline Box errorBox(int code, const std::string& message) {
  return {"Λάθος Φορολ. εκτυπωτή (" + std::to_string(code) + ")\r\n" + message, 48, "Varlen Fiscal"};
}

}  // namespace mirvane::test
