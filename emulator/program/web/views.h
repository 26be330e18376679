#pragma once

#include "emulator/program/station.h"
#include "http/json.h"

// JSON views for the interface, described in emulator/http.md.
namespace mirvane::emulator {

using http::Json;

Json registerView(Station& station);
Json cardView(Station& station);
Json clockView(Station& station);
Json ruleView(const Faults::Rule& rule);
Json happeningView(Station& station, const Station::Happening& happening);
Json faultsView(Station& station);
/// Kind, numbers, time; for a receipt also its lines, taxes and tenders.
Json documentView(Station& station, const Document& document);
/// Its printed lines, from index `first` on.
Json paperView(const Document& document, std::size_t first = 0);
Json entryView(const Station::Entry& entry);
Json displayView(const Display& display);
Json replyView(const Exchange& exchange);

/// Nothing if no kind has this name.
std::optional<Station::Happening::Kind> happeningNamed(std::string_view name);
/// All of them, for error messages.
std::string happeningNames();

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
