#pragma once

#include "com/com.h"
#include "component/component.h"

namespace mirvane::com {

/// Creates objects of one public class. Each call creates a new object; aggregation is not supported.
class ClassFactory final : public ComObject<IClassFactory> {
 public:
  explicit ClassFactory(const PublicClass& publicClass) : class_(publicClass) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

 private:
  const PublicClass& class_;
};

}  // namespace mirvane::com
