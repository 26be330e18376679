#pragma once

#include <optional>
#include <string_view>
#include <utility>

#include "automation/member.h"
#include "automation/root.h"

namespace mirvane {

/// A class's member table, in dispatch order.
class ClassInfo {
 public:
  ClassInfo(std::string_view name, std::vector<Member> members);

  std::string_view name() const { return name_; }
  const std::vector<Member>& members() const { return members_; }

  /// The dispatch id of a member, upper and lower case being the same; nothing when there is no such member.
  std::optional<std::int32_t> dispatchId(std::string_view member) const;

  using Access = mirvane::Access;

  /// The row to invoke, or null.
  const Member* find(std::int32_t dispatchId, Access access) const;
  const Member* find(std::string_view member, Access access) const;

  /// What Object::invoke does, on an object of this class.
  Value invoke(Object& self, std::string_view member, Access access, Arguments arguments) const;

 private:
  std::string_view name_;
  std::vector<Member> members_;
};

/// An object whose class names itself in kName and describes its members in a static `describe()`.
template <class C>
class ObjectOf : public Object {
 public:
  const ClassInfo& classInfo() const override { return C::describe(); }
  std::string_view className() const override { return C::kName; }
  Value invoke(std::string_view member, Access access, Arguments arguments) override {
    return C::describe().invoke(*this, member, access, arguments);
  }
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
