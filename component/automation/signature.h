#pragma once

#include <tuple>

#include "automation/member.h"
#include "automation/root.h"

// What the C++ signature of a member says about its parameters and its result.
namespace mirvane {

template <class T>
concept ObjectClass = std::derived_from<T, Object>;

template <class T>
constexpr Type kTypeOf = [] {
  if constexpr (std::is_enum_v<T>) {
    return Type{TypeKind::enumeration, enumerationName(T{})};
  } else if constexpr (ObjectClass<T>) {
    return Type{TypeKind::object, T::kName};
  } else {
    return kTypeOf<typename T::element_type>;
  }
}();
template <>
inline constexpr Type kTypeOf<void>{TypeKind::none};
template <>
inline constexpr Type kTypeOf<bool>{TypeKind::boolean};
template <>
inline constexpr Type kTypeOf<std::uint8_t>{TypeKind::byte};
template <>
inline constexpr Type kTypeOf<std::int16_t>{TypeKind::integer16};
template <>
inline constexpr Type kTypeOf<std::int32_t>{TypeKind::integer32};
template <>
inline constexpr Type kTypeOf<double>{TypeKind::real};
template <>
inline constexpr Type kTypeOf<Text>{TypeKind::text};
template <>
inline constexpr Type kTypeOf<Value>{TypeKind::variant};
template <>
inline constexpr Type kTypeOf<ObjectPtr>{TypeKind::object};

/// Several parameters of a member that are one parameter in C++: a structure of references. Its Types lists the types
/// of its fields, its kNames their names if these are always the same.
template <class A>
concept Compound = requires {
  typename A::Types;
};

/// How parameter A of a signature appears in the table: how many parameters it is, and how many of them a description
/// names.
template <class A>
struct Expanded {
  static constexpr std::size_t kWidth = 1;
  static constexpr std::size_t kNamed = 1;

  static constexpr void describe(Parameter* at, const Parameter* names) {
    *at = *names;
    at->type = kTypeOf<std::remove_cvref_t<A>>;
    at->byReference = std::is_lvalue_reference_v<A>;
  }
  static decltype(auto) from(CallArguments& arguments, std::size_t at) { return arguments.get<A>(at); }
};

template <Compound A>
struct Expanded<A> {
  static constexpr std::size_t kWidth = std::tuple_size_v<typename A::Types>;
  static constexpr std::size_t kNamed = 0;

  static constexpr void describe(Parameter* at, const Parameter* /*names*/) {
    [at]<std::size_t... I>(std::index_sequence<I...>) {
      (Expanded<std::tuple_element_t<I, typename A::Types>>::describe(at + I, &A::kNames[I]), ...);
    }
    (std::make_index_sequence<kWidth>());
  }
  static A from(CallArguments& arguments, std::size_t at) {
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
      return A{arguments.get<std::tuple_element_t<I, typename A::Types>>(at + I)...};
    }
    (std::make_index_sequence<kWidth>());
  }
};

template <class S>
struct Signature;

template <class R, class... A>
struct Signature<R(A...)> {
  static constexpr Type kResult = kTypeOf<R>;
  static constexpr std::size_t kWidth = (0 + ... + Expanded<A>::kWidth);
  static constexpr std::size_t kNamed = (0 + ... + Expanded<A>::kNamed);

  /// Writes the parameters' types and names; kNamed of them get names.
  static constexpr void describe([[maybe_unused]] Parameter* at, [[maybe_unused]] const Parameter* names) {
    ((Expanded<A>::describe(at, names), at += Expanded<A>::kWidth, names += Expanded<A>::kNamed), ...);
  }

  /// The body that runs `implementation`, a member function of C or a callable that takes a C& first. If it returns
  /// nothing, the result is Empty.
  template <class C, class F>
  static Body body(F implementation) {
    return [implementation](Object& self, CallArguments& arguments) {
      return run(implementation, static_cast<C&>(self), arguments, std::index_sequence_for<A...>());
    };
  }

 private:
  // Position of the first parameter that belongs to argument `i` of the signature.
  static constexpr std::size_t position(std::size_t i) {
    constexpr std::array<std::size_t, sizeof...(A) + 1> kWidths = {Expanded<A>::kWidth..., 0};
    std::size_t at = 0;
    while (i > 0) at += kWidths[--i];
    return at;
  }

  template <class C, class F, std::size_t... I>
  static Value run(const F& implementation, C& self, [[maybe_unused]] CallArguments& arguments,
                   std::index_sequence<I...> /*positions*/) {
    const auto call = [&]() -> decltype(auto) {
      return std::invoke(implementation, self, Expanded<A>::from(arguments, position(I))...);
    };
    if constexpr (std::is_void_v<decltype(call())>) {
      call();
      return {};
    } else if constexpr (Enumeration<R>) {
      return static_cast<std::int32_t>(call());
    } else {
      return call();
    }
  }
};

/// A member's description without its implementation. It is a constant, so nothing is created before it is needed, and
/// a wrong number of names does not compile.
template <class S>
struct Described {
  using Shape = Signature<S>;

  std::string_view name;
  MemberKind kind;
  std::array<Parameter, Shape::kWidth> parameters{};

  template <std::size_t N>
  consteval Described(std::string_view itsName, MemberKind itsKind, const std::array<Parameter, N>& names)
      : name(itsName), kind(itsKind) {
    static_assert(N == Shape::kNamed, "the member has another number of parameters than names are given for it");
    Shape::describe(parameters.data(), names.data());
  }

  Member row() const { return {name, kind, 0, Parameters(parameters.begin(), parameters.end()), Shape::kResult, {}}; }
};

/// Describes a method, from its signature.
template <class S, std::size_t N>
consteval Described<S> method(std::string_view name, const Parameter (&parameters)[N]) {
  return {name, MemberKind::method, std::to_array(parameters)};
}
template <class S>
consteval Described<S> method(std::string_view name) {
  return {name, MemberKind::method, std::array<Parameter, 0>()};
}

}  // namespace mirvane
