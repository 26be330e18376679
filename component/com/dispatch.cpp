#include <algorithm>
#include <string>
#include <vector>

#include "com/foreign_object.h"
#include "com/objects.h"
#include "com/type_library.h"
#include "com/variants.h"
#include "component/component.h"
#include "text/code_page.h"

namespace mirvane::com {
namespace {

// Only this component's objects answer this interface.
constexpr GUID kOwnObject = {0x5E1C1A0B, 0x7D92, 0x4E0B, {0xA3, 0x6C, 0x19, 0xF8, 0x42, 0xD0, 0x67, 0xB5}};

struct OwnObject : IUnknown {
  virtual const ObjectPtr& object() const = 0;
};

const PublicClass* publicClassOf(const ClassInfo& info) {
  const auto all = publicClasses();
  const auto found = std::find_if(all.begin(), all.end(), [&](const PublicClass& c) { return &c.describe() == &info; });
  return found == all.end() ? nullptr : &*found;
}

// A name as in a member table; empty, which matches no member, if it contains other characters.
std::string narrow(LPCOLESTR name) {
  std::string narrowed;
  for (; *name != 0; ++name) {
    if (*name >= 0x80) return {};
    narrowed.push_back(static_cast<char>(*name));
  }
  return narrowed;
}

bool sameName(std::string_view a, const std::string& b) {
  return a.size() == b.size() && _strnicmp(a.data(), b.data(), b.size()) == 0;
}

ClassInfo::Access accessFor(WORD flags) {
  using Access = ClassInfo::Access;
  if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) return Access::write;
  // Late-bound compilers call a property that takes arguments as if it were a method.
  return (flags & DISPATCH_METHOD) != 0 ? Access::callOrRead : Access::read;
}

// The arguments of one call. Converts positions in the caller's array, which are in reverse order, to positions in the
// member's parameter list.
class Call {
 public:
  Call(const Member& member, const DISPPARAMS& given)
      : member_(member), given_(given), arguments_(member.parameters.size()), sources_(arguments_.size(), kNone) {}

  Value run(Object& object) {
    for (UINT i = 0; i < given_.cArgs; ++i) {
      bad_ = i;
      const std::size_t parameter = parameterOf(i);
      sources_[parameter] = i;
      arguments_[parameter].read(given_.rgvarg[i], member_.parameters[parameter].isOutput);
    }
    bad_ = kNone;
    std::vector<Argument> arguments;
    arguments.reserve(arguments_.size());
    for (const VariantArgument& argument : arguments_) arguments.push_back(argument.argument());
    return member_.invoke(object, arguments);
  }

  // If one variable was given twice, a changed value is written last.
  HRESULT writeBack() {
    HRESULT outcome = S_OK;
    for (const bool changed : {false, true}) {
      for (VariantArgument& argument : arguments_) {
        if (argument.isChanged() != changed) continue;
        const HRESULT one = argument.writeBack();
        if (FAILED(one)) outcome = one;
      }
    }
    return outcome;
  }

  // Tells the caller which element of its array caused an error, if any.
  void blame(const AutomationError& error, UINT* badArgument) const {
    UINT bad = bad_;
    const auto parameter = static_cast<std::size_t>(error.argument());
    if (bad == kNone && parameter < sources_.size()) bad = sources_[parameter];
    if (badArgument != nullptr && bad != kNone) *badArgument = bad;
  }

 private:
  static constexpr UINT kNone = ~0U;

  std::size_t parameterOf(UINT i) const {
    const std::size_t count = sources_.size();
    const bool named = i < given_.cNamedArgs;
    std::size_t parameter = given_.cArgs - 1 - i;
    if (named) {
      const DISPID id = given_.rgdispidNamedArgs[i];
      parameter = id == DISPID_PROPERTYPUT ? count - 1 : static_cast<std::size_t>(id);
    }
    if (parameter >= count || sources_[parameter] != kNone) {
      throw AutomationError(named ? AutomationCode::parameterNotFound : AutomationCode::badParameterCount);
    }
    return parameter;
  }

  const Member& member_;
  const DISPPARAMS& given_;
  std::vector<VariantArgument> arguments_;
  std::vector<UINT> sources_;
  UINT bad_ = kNone;
};

void describe(const std::exception& error, const ClassInfo& source, EXCEPINFO* exception) {
  if (exception == nullptr) return;
  *exception = {};
  exception->scode = E_FAIL;
  exception->bstrSource = toBstr(fromUtf8(kTypeLibraryName) + u'.' + fromUtf8(source.name()));
  exception->bstrDescription = toBstr(fromUtf8(error.what()));
}

class Wrapper final : public ComObject<IDispatch, IProvideClassInfo, OwnObject> {
 public:
  explicit Wrapper(const ObjectPtr& object) : object_(object), class_(publicClassOf(object->classInfo())) {
    object_->adapter = this;
  }

  const ObjectPtr& object() const override { return object_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IDispatch || (class_ != nullptr && iid == guidFrom(class_->interfaceId))) {
      *object = static_cast<IDispatch*>(this);
    } else if (iid == IID_IProvideClassInfo && class_ != nullptr) {
      *object = static_cast<IProvideClassInfo*>(this);
    } else if (iid == kOwnObject) {
      *object = static_cast<OwnObject*>(this);
    }
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = class_ != nullptr ? 1 : 0;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID /*language*/, ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    if (index != 0 || class_ == nullptr) return DISP_E_BADINDEX;
    return guarded([&] { return findTypeInfo(guidFrom(class_->interfaceId), info); });
  }

  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return guarded([&] { return findTypeInfo(guidFrom(class_->classId), info); });
  }

  // This interface identifier is reserved, but some programs pass one of their own.
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT count, LCID /*language*/,
                                          DISPID* ids) override {
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    return guarded([&] {
      std::fill(ids, ids + count, DISPID_UNKNOWN);
      ids[0] = object_->classInfo().dispatchId(narrow(names[0])).value_or(DISPID_UNKNOWN);
      for (UINT i = 1; i < count; ++i) ids[i] = parameterId(ids[0], narrow(names[i]));
      return std::find(ids, ids + count, DISPID_UNKNOWN) == ids + count ? S_OK : DISP_E_UNKNOWNNAME;
    });
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID /*reserved*/, LCID /*language*/, WORD flags, DISPPARAMS* given,
                                   VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override {
    if (given == nullptr) return E_INVALIDARG;
    if (result != nullptr) VariantInit(result);
    ++calls_;
    return guardedInside([&] {
      const CallsEnd end(*this);
      const Member* member = object_->classInfo().find(id, accessFor(flags));
      if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
      return invoke(*member, *given, result, exception, badArgument);
    });
  }

 private:
  ~Wrapper() override { object_->adapter = nullptr; }

  // Program code may run while a call waits for its turn or a member shows a window, and may release this object.
  void released() override {
    if (calls_ == 0) {
      delete this;
    } else {
      object_->released();
    }
  }

  struct CallsEnd {
    explicit CallsEnd(Wrapper& wrapper) : wrapper_(wrapper) {}
    CallsEnd(const CallsEnd&) = delete;
    CallsEnd& operator=(const CallsEnd&) = delete;
    ~CallsEnd() {
      if (--wrapper_.calls_ == 0 && wrapper_.isReleased()) delete &wrapper_;
    }

   private:
    Wrapper& wrapper_;
  };

  HRESULT invoke(const Member& member, const DISPPARAMS& given, VARIANT* result, EXCEPINFO* exception,
                 UINT* badArgument) {
    Call call(member, given);
    Value value;
    HRESULT outcome = S_OK;
    try {
      value = call.run(*object_);
    } catch (const AutomationError& error) {
      outcome = static_cast<HRESULT>(error.code());
      call.blame(error, badArgument);
    } catch (const std::bad_alloc&) {
      outcome = E_OUTOFMEMORY;
    } catch (const std::exception& error) {
      outcome = DISP_E_EXCEPTION;
      describe(error, object_->classInfo(), exception);
    }
    const HRESULT written = call.writeBack();
    if (SUCCEEDED(outcome)) outcome = written;
    if (SUCCEEDED(outcome) && result != nullptr) toVariant(value, *result);
    return outcome;
  }

  // A parameter's id is its position.
  DISPID parameterId(DISPID member, const std::string& name) const {
    for (const Member& row : object_->classInfo().members()) {
      if (row.dispatchId != member) continue;
      for (std::size_t i = 0; i < row.parameters.size(); ++i) {
        if (sameName(row.parameters[i].name, name)) return static_cast<DISPID>(i);
      }
    }
    return DISPID_UNKNOWN;
  }

  ObjectPtr object_;
  const PublicClass* class_;
  /// Calls in progress, waiting ones included. A call that never returns counts for ever: its object cannot be
  /// destroyed.
  std::atomic<int> calls_ = 0;
};

}  // namespace

ComPtr<IDispatch> wrap(const ObjectPtr& object) {
  if (const auto* foreign = dynamic_cast<const ForeignObject*>(object.get())) return foreign->dispatch();
  if (object->adapter == nullptr) return ComPtr<IDispatch>(new Wrapper(object));
  auto* wrapper = static_cast<Wrapper*>(object->adapter);
  wrapper->AddRef();
  return ComPtr<IDispatch>(wrapper);
}

ObjectPtr unwrap(IUnknown* pointer) {
  void* found = nullptr;
  if (pointer == nullptr) return nullptr;
  if (SUCCEEDED(pointer->QueryInterface(kOwnObject, &found))) {
    return ComPtr<OwnObject>(static_cast<OwnObject*>(found))->object();
  }
  if (FAILED(pointer->QueryInterface(IID_IDispatch, &found))) return nullptr;
  return std::make_shared<ForeignObject>(ComPtr<IDispatch>(static_cast<IDispatch*>(found)));
}

}  // namespace mirvane::com
