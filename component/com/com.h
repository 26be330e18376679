#pragma once

#include <objbase.h>
#include <ocidl.h>
#include <oleauto.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>
#include <string_view>

#include "com/entry.h"
#include "platform/windows/windows.h"

namespace mirvane::com {

struct Releaser {
  void operator()(IUnknown* pointer) const { pointer->Release(); }
};

/// Owns one reference to a COM object.
template <class T>
using ComPtr = std::unique_ptr<T, Releaser>;

/// Parses a GUID written in braces.
inline GUID guidFrom(std::string_view text) {
  constexpr std::size_t kLength = 38;
  wchar_t wide[kLength + 1] = {};
  std::copy_n(text.begin(), std::min(text.size(), kLength), wide);
  GUID guid{};
  IIDFromString(wide, &guid);
  return guid;
}

/// A COM object with its reference count, which starts at 1.
///
/// The last Release runs inside the component: another thread's call may be about to return this very object, and its
/// destruction affects everybody. The releasing thread never waits, because it may be a garbage collector.
template <class... Interfaces>
class ComObject : public Interfaces..., private Errand {
 public:
  ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    ULONG held = references_;
    while (held > 1) {
      if (references_.compare_exchange_weak(held, held - 1)) return held - 1;
    }
    go();
    return 0;
  }

 protected:
  virtual ~ComObject() = default;

  bool isReleased() const { return references_ == 0; }
  /// Called when the last reference is gone.
  virtual void released() { delete this; }

 private:
  void run() final {
    if (--references_ == 0) released();
  }

  std::atomic<ULONG> references_ = 1;
};

/// Runs the body of an entry point; no exception leaves it.
template <class F>
HRESULT guarded(F body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

/// The same, for an entry point that enters the component.
template <class F>
HRESULT guardedInside(F body) noexcept {
  HRESULT outcome = S_OK;
  inside([&] { outcome = guarded(body); });
  return outcome;
}

}  // namespace mirvane::com
