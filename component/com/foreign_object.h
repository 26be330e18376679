#pragma once

#include "automation/object.h"
#include "com/com.h"

namespace mirvane::com {

/// An object of the program's or of another component, which any member of ours can hold and call. Its members are its
/// own affair: a call asks it by name, and what it answers is the result. Variables of type Text are passed by
/// reference, everything else by value.
///
/// A failure that automation/errors.h has a number for is raised as an AutomationError, any other as a runtime_error
/// with the object's own description.
class ForeignObject final : public Object {
 public:
  explicit ForeignObject(ComPtr<IDispatch> dispatch) : dispatch_(std::move(dispatch)) {}

  /// The object itself, as its component made it; a reference of the caller's own.
  ComPtr<IDispatch> dispatch() const;

  /// No class of ours: the object is refused wherever one of our records is wanted.
  const ClassInfo& classInfo() const override;
  Value invoke(std::string_view member, ClassInfo::Access access, Arguments arguments) override;

 private:
  DISPID idOf(std::string_view member) const;

  const ComPtr<IDispatch> dispatch_;
};

/// A new object of the class with this programmatic identifier; null when it cannot be had, whatever the reason.
ObjectPtr createForeignObject(TextView programmaticId);

}  // namespace mirvane::com
