#pragma once

#include <array>
#include <memory>
#include <string_view>
#include <utility>

#include "automation/argument.h"

namespace mirvane {

class ClassInfo;

/// How a caller accesses a member: by a call, by reading a property, by either (as most scripting clients do), or by a
/// write.
enum class Access { call, read, callOrRead, write };

/// The root of every class that an automation client can hold. Objects are owned by shared_ptrs.
class Object : public std::enable_shared_from_this<Object> {
 public:
  Object();
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object();

  virtual const ClassInfo& classInfo() const = 0;
  /// The class's name if the object can be used as a record of that class; empty if it is not one of our classes.
  virtual std::string_view className() const { return {}; }

  /// Invokes a member by name; kDefaultMember is the default one. Raises memberNotFound if the class has no such member
  /// for this access, and conversion errors before the member runs.
  virtual Value invoke(std::string_view member, Access access, Arguments arguments) = 0;

  /// Calls or reads a member by name. Variables and records are passed by reference, temporaries by value.
  template <class... A>
  Value call(std::string_view member, A&&... arguments) {
    const std::array<Argument, sizeof...(A)> list{argumentFor(std::forward<A>(arguments))...};
    return invoke(member, Access::callOrRead, list);
  }

  /// The program has released the object while one of its members runs; the object lives until that returns.
  virtual void released() {}

  static constexpr std::string_view kDefaultMember{};

  /// Number of objects alive in the process.
  static int liveCount();

  /// The one wrapper through which another component model holds this object; null if there is none.
  void* adapter = nullptr;

 private:
  template <class A>
  static Argument argumentFor(A&& argument) {
    using Plain = std::remove_cvref_t<A>;
    if constexpr (std::derived_from<Plain, Object>) {
      return Argument(Value(argument.shared_from_this()));
    } else if constexpr (std::is_lvalue_reference_v<A> && !std::is_const_v<std::remove_reference_t<A>> &&
                         std::is_constructible_v<Reference, Plain*>) {
      return Argument(Reference(&argument));
    } else if constexpr (std::is_convertible_v<A, TextView>) {
      return Argument(Value(Text(argument)));
    } else {
      return Argument(Value(argument));
    }
  }
};

}  // namespace mirvane
