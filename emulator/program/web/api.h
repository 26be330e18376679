#pragma once

#include "emulator/program/station.h"
#include "http/message.h"

namespace mirvane::emulator {

/// Does what `request` wishes, to the paths of emulator/http.md and to those of the page. Throws Refusal; whatever it
/// throws, the register is as it was. What it has to know when the request is put again it writes down in the request.
http::Answer answer(Station& station, http::Request& request);

}  // namespace mirvane::emulator
