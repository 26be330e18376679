#pragma once

#include "emulator/program/station.h"
#include "http/message.h"

namespace mirvane::emulator {

/// Handles `request`, for the paths in emulator/http.md and those of the page. Throws Refusal; whatever it throws, the
/// register is unchanged. Stores in the request what it needs when that is handled again.
http::Answer answer(Station& station, http::Request& request);

}  // namespace mirvane::emulator
