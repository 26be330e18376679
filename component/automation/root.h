#pragma once

#include <array>
#include <memory>
#include <string_view>
#include <utility>

#include "automation/argument.h"

namespace mirvane {

class ClassInfo;

/// How a caller asks for a member: as a call, as a read of a property, as either (what most scripting clients do), or
/// as a write.
enum class Access { call, read, callOrRead, write };

/// The root of every class that an automation client can hold. Objects live in shared_ptrs.
class Object : public std::enable_shared_from_this<Object> {
 public:
  Object();
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object();

  virtual const ClassInfo& classInfo() const = 0;
  /// The class's name where the object can stand for a record of that class; empty for what is no class of ours.
  virtual std::string_view className() const { return {}; }

  /// Invokes a member by name; kDefaultMember is the one that stands for the object. Raises memberNotFound when the
  /// class has none that can be accessed so, and the errors of argument conversion before the member runs.
  virtual Value invoke(std::string_view member, Access access, Arguments arguments) = 0;

  /// Calls or reads a member by name. Variables are passed by reference and records as themselves; temporaries by
  /// value.
  template <class... A>
  Value call(std::string_view member, A&&... arguments) {
    const std::array<Argument, sizeof...(A)> list{argumentFor(std::forward<A>(arguments))...};
    return invoke(member, Access::callOrRead, list);
  }

  /// The program has let go of the object while a member of it runs, which keeps it until it returns.
  virtual void released() {}

  static constexpr std::string_view kDefaultMember{};

  /// Objects alive in the whole process.
  static int liveCount();

  /// The one wrapper through which another component model holds this object, while there is one.
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
