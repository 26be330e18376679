#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "automation/member.h"

namespace mirvane {

/// A class's member table, in dispatch order.
class ClassInfo {
 public:
  ClassInfo(std::string_view name, std::vector<Member> members);

  std::string_view name() const { return name_; }
  const std::vector<Member>& members() const { return members_; }

  /// The dispatch id of a member, upper and lower case being the same; nothing when there is no such member.
  std::optional<std::int32_t> dispatchId(std::string_view member) const;

  /// How a caller asks for a member: as a call, as a read of a property, as either (what most scripting clients do), or
  /// as a write.
  enum class Access { call, read, callOrRead, write };

  /// The row to invoke, or null.
  const Member* find(std::int32_t dispatchId, Access access) const;
  const Member* find(std::string_view member, Access access) const;

 private:
  std::string_view name_;
  std::vector<Member> members_;
};

/// The root of every class that an automation client can hold. Objects live in shared_ptrs.
class Object : public std::enable_shared_from_this<Object> {
 public:
  Object();
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object();

  virtual const ClassInfo& classInfo() const = 0;

  /// Invokes a member by name; kDefaultMember is the one that stands for the object. Raises memberNotFound when the
  /// class has none that can be accessed so, and the errors of argument conversion before the member runs.
  virtual Value invoke(std::string_view member, ClassInfo::Access access, Arguments arguments);

  /// Calls or reads a member by name. Variables are passed by reference and records as themselves; temporaries by
  /// value.
  template <class... A>
  Value call(std::string_view member, A&&... arguments) {
    const std::array<Argument, sizeof...(A)> list{argumentFor(std::forward<A>(arguments))...};
    return invoke(member, ClassInfo::Access::callOrRead, list);
  }

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

/// An object whose class names itself in kName and describes its members in a static `describe()`.
template <class C>
class ObjectOf : public Object {
 public:
  const ClassInfo& classInfo() const override { return C::describe(); }
};

/// Writes a member table: one call per member, in dispatch order.
template <class C>
class ClassBuilder {
 public:
  /// A method; its parameters' types are those of the member function.
  template <class R, class B, class... A>
  ClassBuilder& method(std::string_view name, R (B::*function)(A...), ParameterNames parameters = {}) {
    return add(
        Contract<R(A...)>(name, MemberKind::method, parametersOf({parameters})).template implementedBy<C>(function));
  }

  /// A property over a field.
  template <class T, class B>
  ClassBuilder& property(std::string_view name, T B::*field) {
    return addRead(name, field).addWrite(name, field);
  }

  /// A property over a field whose write stands before its read in the interface.
  template <class T, class B>
  ClassBuilder& propertyWriteFirst(std::string_view name, T B::*field) {
    return addWrite(name, field).addRead(name, field);
  }

  /// A property that needs code.
  template <class R, class B, class T>
  ClassBuilder& property(std::string_view name, R (B::*read)(), void (B::*write)(T)) {
    return readOnly(name, read).writeOnly(name, write);
  }

  template <class R, class B>
  ClassBuilder& readOnly(std::string_view name, R (B::*read)()) {
    return add(Contract<R()>(name, MemberKind::get, {}).template implementedBy<C>(read));
  }

  template <class B, class T>
  ClassBuilder& writeOnly(std::string_view name, void (B::*write)(T)) {
    return add(Contract<void(T)>(name, MemberKind::put, parametersOf({{"value"}})).template implementedBy<C>(write));
  }

  /// A member of a shared interface.
  template <class Signature, class F>
  ClassBuilder& implement(const Contract<Signature>& contract, F implementation) {
    return add(contract.template implementedBy<C>(implementation));
  }

  ClassBuilder& add(Member member) {
    members_.push_back(std::move(member));
    return *this;
  }

  ClassInfo build() { return ClassInfo(C::kName, std::move(members_)); }

 private:
  template <class T, class B>
  ClassBuilder& addRead(std::string_view name, T B::*field) {
    const auto read = [field](C& self) -> T { return self.*field; };
    return add(Contract<T()>(name, MemberKind::get, {}).template implementedBy<C>(read));
  }
  template <class T, class B>
  ClassBuilder& addWrite(std::string_view name, T B::*field) {
    const auto write = [field](C& self, T value) { self.*field = std::move(value); };
    return add(Contract<void(T)>(name, MemberKind::put, parametersOf({{"value"}})).template implementedBy<C>(write));
  }

  std::vector<Member> members_;
};

}  // namespace mirvane
