#pragma once

#include <string>

#include "text/text.h"

namespace mirvane::emulator {

/// How the register works. What has no effect on its paper, display or drawer is only kept.
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

/// Where the tax authority's server is reached. The addresses stand as on the wire, with "~" for "/".
struct ServerSettings {
  bool isActive = false;
  std::string url, port, key, qrUrl;
};

}  // namespace mirvane::emulator
