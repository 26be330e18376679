#pragma once

#include <cstdint>
#include <string_view>

namespace mirvane {

/// Which driver was selected last.
enum FISCAL_TYPES : std::int32_t {
  FISCAL_unknown = 0,        ///< none: the null driver
  FISCAL_PALKOFISCAL = 1,    ///< the oldest register family
  FISCAL_VARLENFISCAL = 2,   ///< the first-generation register
  FISCAL_VARLENFISCAL2 = 3,  ///< the second-generation register, with card terminals
};

constexpr std::string_view enumerationName(FISCAL_TYPES /*unused*/) { return "FISCAL_TYPES"; }

}  // namespace mirvane
