#pragma once

#include "automation/signature.h"

// What several members have in common: one parameter in C++, several for a program. In a read it is `kFilled`.
namespace mirvane {

namespace detail {

// The types T... of each of N.
template <std::size_t N, class... T>
struct Times {
  using Types = decltype(std::tuple_cat(std::tuple<T...>(std::declval<T>()...),
                                        std::declval<typename Times<N - 1, T...>::Types>()));
};
template <class... T>
struct Times<0, T...> {
  using Types = std::tuple<>;
};

template <std::size_t N>
constexpr std::array<Parameter, N> firstOf(const std::array<const char*, 10>& names, bool filled) {
  std::array<Parameter, N> parameters;
  for (std::size_t i = 0; i < N; ++i) parameters[i] = filled ? output(names[i]) : Parameter(names[i]);
  return parameters;
}

}  // namespace detail

/// Printed lines, each with its size.
template <std::size_t N, bool kFilled>
struct PrintedLines {
  struct Line {
    Text& text;
    std::int16_t& size;
  };
  using Types = typename detail::Times<N, Text&, std::int16_t&>::Types;
  static constexpr auto kNames = detail::firstOf<2 * N>(
      {"line1", "line1Size", "line2", "line2Size", "line3", "line3Size", "line4", "line4Size", "line5", "line5Size"},
      kFilled);

  std::array<Line, N> lines;
};

/// The five VAT rates in percent.
template <bool kFilled>
struct VatRates {
  using Types = std::tuple<double&, double&, double&, double&, double&>;
  static constexpr auto kNames = detail::firstOf<5>({"VatA", "VatB", "VatC", "VatD", "VatE"}, kFilled);

  double &VatA, &VatB, &VatC, &VatD, &VatE;
};

}  // namespace mirvane
