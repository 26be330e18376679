#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "automation/signature.h"

namespace mirvane {

/// A class's member table, in dispatch order.
class ClassInfo {
 public:
  /// Members that have no dispatch id yet get the next one, in their order. Throws logic_error where the ids that are
  /// given have a gap or are given twice.
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

/// Writes a member table.
template <class C>
class ClassBuilder {
 public:
  /// A method; its parameters' types are those of the member function.
  template <class R, class B, class... A>
  ClassBuilder& method(std::string_view name, R (B::*function)(A...), Parameters names = {}) {
    using Shape = Signature<R(A...)>;
    return add({name, MemberKind::method, 0, described<Shape>(name, names), Shape::kResult,
                Shape::template body<C>(function)});
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
    return get<R>(name, read);
  }

  template <class B, class T>
  ClassBuilder& writeOnly(std::string_view name, void (B::*write)(T)) {
    return put<T>(name, write);
  }

  /// The two halves of a property, by what gives its value and what takes it.
  template <class T, class F>
  ClassBuilder& get(std::string_view name, F read) {
    using Shape = Signature<T()>;
    return add({name, MemberKind::get, 0, {}, Shape::kResult, Shape::template body<C>(read)});
  }
  template <class T, class F>
  ClassBuilder& put(std::string_view name, F write) {
    using Shape = Signature<void(T)>;
    return add({name, MemberKind::put, 0, described<Shape>(name, {"value"}), {}, Shape::template body<C>(write)});
  }

  /// A member that is described elsewhere, and what it does in this class.
  template <const auto& kDescribed, class F>
  ClassBuilder& implement(F body) {
    if constexpr (requires { isListed(kDescribed); }) {
      static_assert(isListed(kDescribed), "the member is not in the list of all: no program could call it");
    }
    Member row = kDescribed.row();
    row.body = std::remove_cvref_t<decltype(kDescribed)>::Shape::template body<C>(body);
    return add(std::move(row));
  }

  ClassBuilder& add(Member member) {
    members_.push_back(std::move(member));
    return *this;
  }

  /// The dispatch id of the row that was added last, where the order of the rows does not tell it.
  ClassBuilder& at(std::int32_t dispatchId) {
    members_.back().dispatchId = dispatchId;
    return *this;
  }

  /// The row of a name; null when there is none yet.
  Member* find(std::string_view name) {
    const auto row = std::ranges::find(members_, name, &Member::name);
    return row == members_.end() ? nullptr : &*row;
  }

  ClassInfo build() { return ClassInfo(C::kName, std::move(members_)); }

 private:
  template <class Shape>
  static Parameters described(std::string_view name, const Parameters& names) {
    if (names.size() != Shape::kNamed) throw std::logic_error("names of the parameters of " + std::string(name));
    Parameters parameters(Shape::kWidth);
    Shape::describe(parameters.data(), names.data());
    return parameters;
  }
  template <class T, class B>
  ClassBuilder& addRead(std::string_view name, T B::*field) {
    return get<T>(name, [field](C& self) -> T { return self.*field; });
  }
  template <class T, class B>
  ClassBuilder& addWrite(std::string_view name, T B::*field) {
    return put<T>(name, [field](C& self, T value) { self.*field = std::move(value); });
  }

  std::vector<Member> members_;
};

}  // namespace mirvane
