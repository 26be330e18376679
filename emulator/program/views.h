#pragma once

#include <nlohmann/json_fwd.hpp>

#include "emulator/program/station.h"

// What the interface shows, as JSON. emulator/http.md describes it.
namespace mirvane::emulator {

using Json = nlohmann::ordered_json;

Json registerView(Station& station);
Json faultsView(const Station& station);
/// Kind, numbers, time; of a receipt also its lines, taxes and tenders.
Json documentView(Station& station, const Document& document);
/// What is printed on it, from the line with index `first` on.
Json paperView(const Document& document, std::size_t first = 0);
Json entryView(const Station::Entry& entry);
Json replyView(const Exchange& exchange);

/// The name of a switch and its bit in the printer status byte.
struct PrinterSwitch {
  const char* name;
  std::uint8_t bit;
};
constexpr PrinterSwitch kPrinterSwitches[] = {{"paperEnd", kPrinterPaperEnd},
                                              {"offline", kPrinterOffline},
                                              {"silent", kPrinterSilent},
                                              {"error", kPrinterError},
                                              {"nearFull", kPrinterFlashNearFull}};

}  // namespace mirvane::emulator
