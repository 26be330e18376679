#pragma once

#include "automation/object.h"
#include "com/com.h"

namespace mirvane::com {

/// An object of the program or of another component, which our members can hold and call. Members are called by name
/// and return whatever the object returns. Variables of type Text are passed by reference, everything else by value.
///
/// A failure that has a number in automation/errors.h is raised as an AutomationError, any other as a runtime_error
/// with the object's own description.
class ForeignObject final : public Object {
 public:
  explicit ForeignObject(ComPtr<IDispatch> dispatch) : dispatch_(std::move(dispatch)) {}

  /// The object itself. The caller owns the reference.
  ComPtr<IDispatch> dispatch() const;

  /// Not one of our classes: the object is refused wherever one of our records is required.
  const ClassInfo& classInfo() const override;
  Value invoke(std::string_view member, ClassInfo::Access access, Arguments arguments) override;

 private:
  DISPID idOf(std::string_view member) const;

  const ComPtr<IDispatch> dispatch_;
};

/// Creates an object of the class with this programmatic identifier; null if that fails for any reason.
ObjectPtr createForeignObject(TextView programmaticId);

}  // namespace mirvane::com
