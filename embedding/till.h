#pragma once

#include "component/component.h"

namespace mirvane::embedding {

/// Calls a member whose last arguments are Result, Exresult and SupressError_, and Pass where it takes one.
template <class... A>
Value callWithOutcome(Object& object, std::string_view member, std::int16_t& Result, Text& Exresult,
                      bool& SupressError_, A&&... arguments) {
  const Member* const row = object.classInfo().find(member, ClassInfo::Access::call);
  if (row != nullptr && std::ranges::find(row->parameters, "Pass", &Parameter::name) != row->parameters.end()) {
    Text pass;
    return object.call(member, std::forward<A>(arguments)..., Result, Exresult, SupressError_, pass);
  }
  return object.call(member, std::forward<A>(arguments)..., Result, Exresult, SupressError_);
}

/// One till: calls the members of the facade by name and keeps what the last call told. The facade is a native object,
/// or one that is registered on a Windows machine. Raises AutomationError as the members do.
class Till {
 public:
  explicit Till(ObjectPtr facade = createObject("fiscalTrevikModule")) : facade_(std::move(facade)) {}

  /// Calls a member that tells an outcome. True when it was told that it is done, which is Result 0. Variables that the
  /// member fills are given as references.
  template <class... A>
  bool call(std::string_view member, A&&... arguments) {
    return callOn(*facade_, member, std::forward<A>(arguments)...);
  }
  /// The same of another object of the component, such as an adjustment.
  template <class... A>
  bool callOn(Object& object, std::string_view member, A&&... arguments) {
    // Some failures leave it as it was.
    Result = kUntouched;
    Exresult.clear();
    callWithOutcome(object, member, Result, Exresult, SupressError_, std::forward<A>(arguments)...);
    return Result == 0;
  }
  /// Calls or reads a member that has no such arguments.
  template <class... A>
  Value read(std::string_view member, A&&... arguments) {
    return facade_->call(member, std::forward<A>(arguments)...);
  }

  Object& facade() { return *facade_; }
  /// Lets go of the facade, which may be inside a call, and takes another.
  void changeFacade() {
    facade_ = nullptr;
    facade_ = createObject("fiscalTrevikModule");
  }

  /// What a member leaves in Result that does not set it.
  static constexpr std::int16_t kUntouched = 32767;

  std::int16_t Result = kUntouched;
  Text Exresult;
  /// Without an operator nobody closes a message box.
  bool SupressError_ = true;

 private:
  ObjectPtr facade_;
};

}  // namespace mirvane::embedding
