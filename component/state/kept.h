#pragma once

#include <atomic>
#include <memory>
#include <vector>

namespace mirvane {

/// State of single layers: one object per type, created when it is first asked for.
class Kept {
 public:
  template <class T>
  T& of() {
    static const std::size_t kPlace = lastPlace()++;
    if (all_.size() <= kPlace) all_.resize(kPlace + 1);
    if (all_[kPlace] == nullptr) all_[kPlace] = std::make_shared<T>();
    return *static_cast<T*>(all_[kPlace].get());
  }

 private:
  static std::atomic<std::size_t>& lastPlace() {
    static std::atomic<std::size_t> place = 0;
    return place;
  }

  std::vector<std::shared_ptr<void>> all_;
};

}  // namespace mirvane
