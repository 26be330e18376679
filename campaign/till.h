#pragma once

#include "campaign/machine.h"
#include "component/component.h"
#include "facade/fiscal_trevik_module.h"
#include "state/module_state.h"

namespace mirvane::campaign {

/// A till program that has just started, on a machine: it makes calls and looks at what it is told.
class Till {
 public:
  explicit Till(Machine& machine, bool suppress = true) : SupressError_(suppress) {
    moduleState() = ModuleState{};
    moduleState().platform = &machine.platform;
    startComponent();
    facade_ = std::make_shared<fiscalTrevikModule>();
  }
  Till(const Till&) = delete;
  Till& operator=(const Till&) = delete;
  ~Till() {
    facade_ = nullptr;
    moduleState() = ModuleState{};
  }

  /// Calls a member whose last arguments are Result, Exresult and SupressError_. True when it was told that it is done:
  /// no automation error, and Result 0.
  template <class... A>
  bool call(const char* member, A&&... arguments) {
    return tell(*facade_, member, std::forward<A>(arguments)..., Result, Exresult, SupressError_);
  }
  bool discount(double& amount) {
    bool onLastItem = false;
    Value adjustment;
    try {
      adjustment = facade_->call("adjustment", onLastItem);
    } catch (const AutomationError&) {  // no register is connected
      return false;
    }
    return tell(*std::get<ObjectPtr>(adjustment), "amountDiscount", u"ΕΚΠΤΩΣΗ", amount, Result, Exresult,
                SupressError_);
  }
  bool send(const char16_t* command) {
    Text pass;
    return tell(*facade_, "SendCommand_", command, Result, Exresult, SupressError_, pass);
  }
  /// Lets go of the one facade, which may be inside a call, and takes another.
  void changeFacade() {
    facade_ = nullptr;
    facade_ = std::make_shared<fiscalTrevikModule>();
  }
  fiscalTrevikModule& facade() { return *facade_; }

  std::int16_t Result = 0;
  Text Exresult;
  bool SupressError_;

 private:
  template <class... A>
  bool tell(Object& object, const char* member, A&&... arguments) {
    // Some failures leave it as it was.
    Result = kUntouched;
    Exresult.clear();
    try {
      object.call(member, std::forward<A>(arguments)...);
    } catch (const AutomationError&) {
      Result = kUntouched;
    }
    return Result == 0;
  }

  static constexpr std::int16_t kUntouched = 32767;

  std::shared_ptr<fiscalTrevikModule> facade_;
};

}  // namespace mirvane::campaign
