#pragma once

#include <string>

#include "text/text.h"

namespace mirvane::emulator {

/// The register's settings. Those without effect on its paper, display or drawer are only stored.
struct Settings {
  int printerId = 1;
  Text printerDescription = u"MIRVANE";
  /// Printed on receipts unless empty.
  Text cashier;
  bool printsDepartment = false;
  bool opensDrawerOnTotal = false;
  bool printsOnNoSale = false;
  bool printsVatDetail = true;
  bool printsFooter = true;
  int topLogo = 0, bottomLogo = 0;
  bool usesCutter = false;
  bool usesDisplay = true;
};

/// The tax authority's server. Addresses are as on the wire, with "~" for "/".
struct ServerSettings {
  bool isActive = false;
  std::string url, port, key, qrUrl;
};

}  // namespace mirvane::emulator
