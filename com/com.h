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

/// The identifier that `text` writes in braces.
inline GUID guidFrom(std::string_view text) {
  constexpr std::size_t kLength = 38;
  wchar_t wide[kLength + 1] = {};
  std::copy_n(text.begin(), std::min(text.size(), kLength), wide);
  GUID guid{};
  IIDFromString(wide, &guid);
  return guid;
}

/// A COM object and its reference count, which is 1 at first.
template <class... Interfaces>
class ComObject : public Interfaces... {
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
    // Inside: another thread's call may be about to hand this very object out, and what ends with it is everybody's.
    const Entry entry;
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~ComObject() = default;

 private:
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

}  // namespace mirvane::com
