#pragma once

#include "automation/object.h"

namespace mirvane {

/// The register's settings for one card terminal.
struct clsEFT : ObjectOf<clsEFT> {
  static constexpr std::string_view kName = "clsEFT";
  static const ClassInfo& describe();

  std::int16_t eftId{};  ///< number of the terminal on the register
  std::int16_t eftEnabled{};
  Text eftIP;
  std::int32_t eftPort{};
  Text eftDescription;  ///< at most 10 characters are written
  std::int16_t eftVariant{};
  std::int16_t eftTimeout{};
  std::int16_t bitmap_Main{};
  std::int16_t bitmap_2{};
  std::int16_t bitmap_3{};
  std::int16_t bitmap_4{};
  Text eftTID;            ///< the terminal's own identifier; only read
  std::int16_t eftMDW{};  ///< middleware flag
  Text MDW_ACQ;
  Text MDW_TID;
  Text eft_TRANS;
  std::int16_t eft_ECRIDFormat{};
};

inline const ClassInfo& clsEFT::describe() {
  static const ClassInfo info = ClassBuilder<clsEFT>()
                                    .property("eftId", &clsEFT::eftId)
                                    .property("eftEnabled", &clsEFT::eftEnabled)
                                    .property("eftIP", &clsEFT::eftIP)
                                    .property("eftPort", &clsEFT::eftPort)
                                    .propertyWriteFirst("eftDescription", &clsEFT::eftDescription)
                                    .property("eftVariant", &clsEFT::eftVariant)
                                    .property("eftTimeout", &clsEFT::eftTimeout)
                                    .property("bitmap_Main", &clsEFT::bitmap_Main)
                                    .property("bitmap_2", &clsEFT::bitmap_2)
                                    .property("bitmap_3", &clsEFT::bitmap_3)
                                    .property("bitmap_4", &clsEFT::bitmap_4)
                                    .property("eftTID", &clsEFT::eftTID)
                                    .property("eftMDW", &clsEFT::eftMDW)
                                    .propertyWriteFirst("MDW_ACQ", &clsEFT::MDW_ACQ)
                                    .propertyWriteFirst("MDW_TID", &clsEFT::MDW_TID)
                                    .propertyWriteFirst("eft_TRANS", &clsEFT::eft_TRANS)
                                    .property("eft_ECRIDFormat", &clsEFT::eft_ECRIDFormat)
                                    .build();
  return info;
}

}  // namespace mirvane
