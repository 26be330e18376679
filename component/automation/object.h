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
  /// Members without a dispatch id get the next one, in order. Throws logic_error if the given ids have gaps or
  /// duplicates.
  ClassInfo(std::string_view name, std::vector<Member> members);

  std::string_view name() const { return name_; }
  const std::vector<Member>& members() const { return members_; }

  /// The dispatch id of a member, whatever the case of its letters; nothing if there is no such member.
  std::optional<std::int32_t> dispatchId(std::string_view member) const;

  using Access = mirvane::Access;

  /// The row to invoke; null if there is none.
  const Member* find(std::int32_t dispatchId, Access access) const;
  const Member* find(std::string_view member, Access access) const;

  /// Invokes a member of an object of this class: see Object::invoke.
  Value invoke(Object& self, std::string_view member, Access access, Arguments arguments) const;

 private:
  std::string_view name_;
  std::vector<Member> members_;
};

/// An object whose class has its name in kName and a static `describe()` that describes its members.
template <class C>
class ObjectOf : public Object {
 public:
  const ClassInfo& classInfo() const override { return C::describe(); }
  std::string_view className() const override { return C::kName; }
  Value invoke(std::string_view member, Access access, Arguments arguments) override {
    return C::describe().invoke(*this, member, access, arguments);
  }
};

/// Builds a member table.
template <class C>
class ClassBuilder {
 public:
  /// Adds a method. Its parameter types are those of the member function.
  template <class R, class B, class... A>
  ClassBuilder& method(std::string_view name, R (B::*function)(A...), Parameters names = {}) {
    using Shape = Signature<R(A...)>;
    return add({name, MemberKind::method, 0, described<Shape>(name, names), Shape::kResult,
                Shape::template body<C>(function)});
  }

  /// Adds a property backed by a field.
  template <class T, class B>
  ClassBuilder& property(std::string_view name, T B::*field) {
    return addRead(name, field).addWrite(name, field);
  }

  /// Adds a property backed by a field, its write before its read as in the interface.
  template <class T, class B>
  ClassBuilder& propertyWriteFirst(std::string_view name, T B::*field) {
    return addWrite(name, field).addRead(name, field);
  }

  /// Adds a property with a getter and a setter.
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

  /// Adds both halves of a property, from a getter and a setter callable.
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

  /// Adds a member that is described elsewhere, with this class's implementation.
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

  /// Sets the dispatch id of the latest row, if it differs from the order of the rows.
  ClassBuilder& at(std::int32_t dispatchId) {
    members_.back().dispatchId = dispatchId;
    return *this;
  }

  /// The row with this name; null if there is none yet.
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
