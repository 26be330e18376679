#pragma once

#include "automation/object.h"
#include "support/tcp_client.h"

namespace mirvane {

/// Properties of the link that the drivers and the network endpoint share.
struct cPortProp : ObjectOf<cPortProp> {
  static constexpr std::string_view kName = "cPortProp";
  static const ClassInfo& describe();

  bool tcpPort{};  ///< the device is reached over the network
  std::int32_t comHandle{};
  bool isConnected{};

  /// The network endpoint; created when there is none, so never Nothing.
  std::shared_ptr<cTCPIP> TCPClass() {
    if (tcpClass_ == nullptr) tcpClass_ = std::make_shared<cTCPIP>();
    return tcpClass_;
  }
  void setTCPClass(std::shared_ptr<cTCPIP> value) { tcpClass_ = std::move(value); }

 private:
  std::shared_ptr<cTCPIP> tcpClass_;
};

inline const ClassInfo& cPortProp::describe() {
  static const ClassInfo info = ClassBuilder<cPortProp>()
                                    .property("tcpPort", &cPortProp::tcpPort)
                                    .property("comHandle", &cPortProp::comHandle)
                                    .property("TCPClass", &cPortProp::TCPClass, &cPortProp::setTCPClass)
                                    .property("isConnected", &cPortProp::isConnected)
                                    .build();
  return info;
}

}  // namespace mirvane
