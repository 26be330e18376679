#pragma once

#include "automation/object.h"

namespace mirvane {

/// Settings of the tax authority's server.
struct clseSendProps : ObjectOf<clseSendProps> {
  static constexpr std::string_view kName = "clseSendProps";
  static const ClassInfo& describe();

  Text URL;
  Text QRURL;
  Text AES;  ///< encryption key
  std::int16_t PORT{};
};

inline const ClassInfo& clseSendProps::describe() {
  static const ClassInfo info = ClassBuilder<clseSendProps>()
                                    .property("URL", &clseSendProps::URL)
                                    .property("QRURL", &clseSendProps::QRURL)
                                    .property("AES", &clseSendProps::AES)
                                    .property("PORT", &clseSendProps::PORT)
                                    .build();
  return info;
}

}  // namespace mirvane
