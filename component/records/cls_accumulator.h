#pragma once

#include "automation/object.h"

namespace mirvane {

/// Sales of one department or category. The caller sets Id; the call fills the rest.
struct clsAccumulator : ObjectOf<clsAccumulator> {
  static constexpr std::string_view kName = "clsAccumulator";
  static const ClassInfo& describe();

  std::int16_t Id{};
  Text Desc;
  double Count{};   ///< quantity sold
  double Amount{};  ///< euro
};

inline const ClassInfo& clsAccumulator::describe() {
  static const ClassInfo info = ClassBuilder<clsAccumulator>()
                                    .property("Id", &clsAccumulator::Id)
                                    .property("Desc", &clsAccumulator::Desc)
                                    .property("Count", &clsAccumulator::Count)
                                    .property("Amount", &clsAccumulator::Amount)
                                    .build();
  return info;
}

}  // namespace mirvane
