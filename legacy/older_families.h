#pragma once

#include "state/module_state.h"

namespace mirvane {

// The two older device families. Their place in the probe order is kept, so that a driver for one is found before the
// newer ones; none is present in this build, and probing passes over them.
//
// A driver plugs in by being a class that implements the members of interface/members.h and giving its row a
// function that creates one.
inline constexpr DriverCandidate kFiscalOrnaModule{FISCAL_PALKOFISCAL, "FiscalOrnaModule", nullptr};
inline constexpr DriverCandidate kFiscalVarlenModule{FISCAL_VARLENFISCAL, "FiscalVarlenModule", nullptr};

}  // namespace mirvane
