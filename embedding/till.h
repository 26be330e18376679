#pragma once

#include "component/component.h"

namespace mirvane::embedding {

/// Calls a member whose last arguments are Result, Exresult and SupressError_, and Pass if it has one.
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

/// One till: calls the facade's members by name and keeps the outcome of the last call. The facade is a native object,
/// or one that is registered on a Windows machine. Raises AutomationError as the members do.
class Till {
 public:
  explicit Till(ObjectPtr facade = createObject("fiscalTrevikModule")) : facade_(std::move(facade)) {}

  /// Calls a member that reports an outcome; true if Result is 0. Pass variables that the member fills by reference.
  template <class... A>
  bool call(std::string_view member, A&&... arguments) {
    return callOn(*facade_, member, std::forward<A>(arguments)...);
  }
  /// The same for another object of the component, such as an adjustment.
  template <class... A>
  bool callOn(Object& object, std::string_view member, A&&... arguments) {
    // Some failures leave Result as it was.
    Result = kUntouched;
    Exresult.clear();
    callWithOutcome(object, member, Result, Exresult, SupressError_, std::forward<A>(arguments)...);
    return Result == 0;
  }
  /// Calls or reads a member without these arguments.
  template <class... A>
  Value read(std::string_view member, A&&... arguments) {
    return facade_->call(member, std::forward<A>(arguments)...);
  }

  Object& facade() { return *facade_; }
  /// Releases the facade, which may be inside a call, and creates another.
  void changeFacade() {
    facade_ = nullptr;
    facade_ = createObject("fiscalTrevikModule");
  }

  /// Result after a member that does not set it.
  static constexpr std::int16_t kUntouched = 32767;

  std::int16_t Result = kUntouched;
  Text Exresult;
  /// True, because without an operator nobody closes a message box.
  bool SupressError_ = true;

 private:
  ObjectPtr facade_;
};

}  // namespace mirvane::embedding
