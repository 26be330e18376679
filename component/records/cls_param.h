#pragma once

#include <cstdlib>

#include "automation/object.h"

namespace mirvane {

/// The register's settings, for reading and writing.
struct clsParam : ObjectOf<clsParam> {
  static constexpr std::string_view kName = "clsParam";
  static const ClassInfo& describe();

  std::int16_t printerId{};
  Text printerDescription;
  Text cashierDesc;
  std::uint8_t printRECPluDepartment{};
  std::uint8_t drawerOpenonTotal{};
  std::uint8_t printREConNoSale{};
  std::uint8_t printRECVATDetail{};
  std::uint8_t printRECFooterComments{};
  std::int16_t printRECTopLogo{};
  std::int16_t printRECBottomLogo{};
  std::uint8_t printerUSeCutter{};
  std::int16_t printerDrawerID{};
  std::uint8_t printerQuantityPrint{};

  /// Returns what is stored, the opposite of what was last set: programs in the field rely on 1 reading back as 0.
  std::uint8_t useLCDdisplay() { return storedUseLCDdisplay_; }
  /// Stores |1 - value|: 1 becomes 0, 0 becomes 1, 2 becomes 1.
  void setUseLCDdisplay(std::uint8_t value) { storedUseLCDdisplay_ = static_cast<std::uint8_t>(std::abs(1 - value)); }

 private:
  std::uint8_t storedUseLCDdisplay_{};
};

inline const ClassInfo& clsParam::describe() {
  static const ClassInfo info = ClassBuilder<clsParam>()
                                    .property("printerId", &clsParam::printerId)
                                    .property("printerDescription", &clsParam::printerDescription)
                                    .property("cashierDesc", &clsParam::cashierDesc)
                                    .property("printRECPluDepartment", &clsParam::printRECPluDepartment)
                                    .property("drawerOpenonTotal", &clsParam::drawerOpenonTotal)
                                    .property("printREConNoSale", &clsParam::printREConNoSale)
                                    .property("printRECVATDetail", &clsParam::printRECVATDetail)
                                    .property("printRECFooterComments", &clsParam::printRECFooterComments)
                                    .property("printRECTopLogo", &clsParam::printRECTopLogo)
                                    .property("printRECBottomLogo", &clsParam::printRECBottomLogo)
                                    .property("printerUSeCutter", &clsParam::printerUSeCutter)
                                    .property("useLCDdisplay", &clsParam::useLCDdisplay, &clsParam::setUseLCDdisplay)
                                    .property("printerDrawerID", &clsParam::printerDrawerID)
                                    .propertyWriteFirst("printerQuantityPrint", &clsParam::printerQuantityPrint)
                                    .build();
  return info;
}

}  // namespace mirvane
