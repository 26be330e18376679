#pragma once

#include "component/component.h"
#include "state/module_state.h"

namespace mirvane::embedding {

/// The component inside a native program: started with this value and taken down with it. There is one register, and so
/// one such value, in a process at a time; objects of the component may not outlive it. One thread at a time calls in.
class Component {
 public:
  /// `machine` is what the component finds around it, this machine by default, and outlives the value. The flight
  /// record is written into `recordFolder` while that folder is there; "" for none.
  explicit Component(platform::Platform& machine = platform::hostPlatform(), TextView recordFolder = {}) {
    moduleState() = ModuleState{};
    moduleState().platform = &machine;
    moduleState().recordFolder = recordFolder;
    startComponent();
  }
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;
  ~Component() { moduleState() = ModuleState{}; }
};

}  // namespace mirvane::embedding
