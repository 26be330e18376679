#pragma once

#include "component/component.h"
#include "state/module_state.h"

namespace mirvane::embedding {

/// The component inside a native program: started by the constructor, stopped by the destructor. There is one register,
/// so only one Component may exist in a process at a time, and the component's objects must not outlive it. One thread
/// at a time may call.
class Component {
 public:
  /// `machine` is the component's environment, by default this machine, and must outlive this object. The flight record
  /// is written to `recordFolder` while that folder exists; "" for none.
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
