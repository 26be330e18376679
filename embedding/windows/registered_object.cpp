#include "embedding/windows/registered_object.h"

#include <objbase.h>
#include <oleauto.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <vector>

#include "component/component.h"
#include "platform/windows/windows.h"
#include "text/code_page.h"

namespace mirvane::embedding {
namespace {

class RegisteredObject final : public Object {
 public:
  explicit RegisteredObject(IDispatch* dispatch, const PublicClass* ours = nullptr)
      : dispatch_(dispatch), ours_(ours) {}
  RegisteredObject(const RegisteredObject&) = delete;
  RegisteredObject& operator=(const RegisteredObject&) = delete;
  ~RegisteredObject() override { dispatch_->Release(); }

  IDispatch* dispatch() const { return dispatch_; }

  const ClassInfo& classInfo() const override {
    static const ClassInfo kNoClassOfOurs("Object", {});
    return ours_ == nullptr ? kNoClassOfOurs : ours_->describe();
  }

  Value invoke(std::string_view member, Access access, Arguments arguments) override;

 private:
  IDispatch* dispatch_;
  const PublicClass* ours_;
};

// The public class that `is` is true of; null where there is none.
template <class Is>
const PublicClass* publicClass(const Is& is) {
  const auto classes = publicClasses();
  const auto found = std::ranges::find_if(classes, is);
  return found == classes.end() ? nullptr : &*found;
}

const PublicClass* classNamed(TextView programmaticId) {
  return publicClass([name = toUtf8(programmaticId)](const PublicClass& each) {
    return name == std::string(kTypeLibraryName) + "." + std::string(each.describe().name());
  });
}

[[noreturn]] void fail(HRESULT outcome, std::string_view where) {
  std::array<char, 40> code{};
  std::snprintf(code.data(), code.size(), " %08lX", static_cast<unsigned long>(outcome));
  std::array<wchar_t, 300> text{};
  FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, static_cast<DWORD>(outcome), 0,
                 text.data(), text.size(), nullptr);
  std::string message = toUtf8(fromWide(text.data()));
  message.erase(message.find_last_not_of("\r\n. ") + 1);
  throw std::runtime_error(std::string(where) + code.data() + (message.empty() ? "" : " " + message));
}

[[noreturn]] void raise(HRESULT outcome) { throw AutomationError(static_cast<AutomationCode>(outcome)); }

BSTR toBstr(TextView text) {
  return SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
}

Text textOf(BSTR text) { return {reinterpret_cast<const char16_t*>(text), SysStringLen(text)}; }

// One argument: a typed reference to what it holds, of which a variable is told afterwards.
class Passed {
 public:
  explicit Passed(const Argument& argument) : argument_(argument) {
    const Value value = argument.value();
    if (const auto* const object = std::get_if<ObjectPtr>(&value); object != nullptr) {
      refer(VT_DISPATCH, object_);
      const auto* const held = dynamic_cast<RegisteredObject*>(object->get());
      object_ = held == nullptr ? nullptr : held->dispatch();
    } else if (std::holds_alternative<Text>(value)) {
      refer(VT_BSTR, text_);
      text_ = toBstr(std::get<Text>(value));
    } else if (std::holds_alternative<bool>(value)) {
      refer(VT_BOOL, flag_);
      flag_ = std::get<bool>(value) ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (std::holds_alternative<double>(value)) {
      refer(VT_R8, real_);
      real_ = std::get<double>(value);
    } else {
      refer(VT_I2, integer_);
      integer_ = convertTo<std::int16_t>(value);
    }
  }
  Passed(const Passed&) = delete;
  Passed& operator=(const Passed&) = delete;
  ~Passed() { SysFreeString(text_); }

  const VARIANT& variant() const { return given_; }

  void writeBack() const {
    if (auto* const text = argument_.variable<Text>(); text != nullptr) *text = textOf(text_);
    if (auto* const integer = argument_.variable<std::int16_t>(); integer != nullptr) *integer = integer_;
    if (auto* const real = argument_.variable<double>(); real != nullptr) *real = real_;
  }

 private:
  template <class T>
  void refer(VARTYPE type, T& variable) {
    given_.vt = static_cast<VARTYPE>(VT_BYREF | type);
    given_.byref = &variable;
  }

  const Argument& argument_;
  VARIANT given_{};
  IDispatch* object_ = nullptr;
  BSTR text_ = nullptr;
  VARIANT_BOOL flag_ = VARIANT_FALSE;
  double real_ = 0;
  short integer_ = 0;
};

Value valueOf(VARIANT& returned) {
  if (returned.vt == VT_DISPATCH && returned.pdispVal != nullptr) {
    return ObjectPtr(std::make_shared<RegisteredObject>(returned.pdispVal));
  }
  VARIANT number{};
  const bool isNumber = VariantChangeType(&number, &returned, 0, VT_R8) == S_OK;
  VariantClear(&returned);
  return isNumber ? Value(number.dblVal) : Value();
}

Value RegisteredObject::invoke(std::string_view member, Access /*access*/, Arguments arguments) {
  std::wstring name(member.begin(), member.end());
  LPOLESTR names = name.data();
  DISPID id = DISPID_UNKNOWN;
  HRESULT outcome = dispatch_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(outcome)) raise(outcome);
  std::vector<std::unique_ptr<Passed>> passed;
  std::vector<VARIANT> given;
  for (const Argument& argument : arguments) {
    passed.push_back(std::make_unique<Passed>(argument));
    given.insert(given.begin(), passed.back()->variant());
  }
  DISPPARAMS parameters{given.data(), nullptr, static_cast<UINT>(given.size()), 0};
  VARIANT returned{};
  outcome = dispatch_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters,
                              &returned, nullptr, nullptr);
  if (FAILED(outcome)) raise(outcome);
  for (const auto& each : passed) each->writeBack();
  return valueOf(returned);
}

// The calling thread's apartment, for as long as the program runs.
void enterApartment() {
  static const HRESULT kEntered = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  if (FAILED(kEntered)) fail(kEntered, "CoInitializeEx");
}

IDispatch* create(const std::wstring& programmaticId, HRESULT& outcome) {
  enterApartment();
  CLSID id{};
  void* created = nullptr;
  outcome = CLSIDFromProgID(programmaticId.c_str(), &id);
  if (SUCCEEDED(outcome)) outcome = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &created);
  return static_cast<IDispatch*>(created);
}

}  // namespace

ObjectPtr createRegistered(TextView programmaticId) {
  HRESULT outcome = S_OK;
  IDispatch* const created = create(toWide(programmaticId), outcome);
  if (created == nullptr) fail(outcome, toUtf8(programmaticId));
  return std::make_shared<RegisteredObject>(created, classNamed(programmaticId));
}

ObjectPtr findRegistered(TextView programmaticId) {
  HRESULT outcome = S_OK;
  IDispatch* const created = create(toWide(programmaticId), outcome);
  return created == nullptr ? nullptr : std::make_shared<RegisteredObject>(created, classNamed(programmaticId));
}

ObjectPtr createFrom(const std::filesystem::path& library, std::string_view classId) {
  enterApartment();
  const HMODULE module = LoadLibraryExW(library.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  auto* const entry = module == nullptr ? nullptr : GetProcAddress(module, "DllGetClassObject");
  if (entry == nullptr) fail(HRESULT_FROM_WIN32(GetLastError()), toUtf8(fromWide(library.wstring())));
  const auto classObject = reinterpret_cast<LPFNGETCLASSOBJECT>(reinterpret_cast<void*>(entry));
  CLSID id{};
  void* factory = nullptr;
  void* created = nullptr;
  HRESULT outcome = IIDFromString(std::wstring(classId.begin(), classId.end()).c_str(), &id);
  if (SUCCEEDED(outcome)) outcome = classObject(id, IID_IClassFactory, &factory);
  if (SUCCEEDED(outcome)) {
    outcome = static_cast<IClassFactory*>(factory)->CreateInstance(nullptr, IID_IDispatch, &created);
    static_cast<IClassFactory*>(factory)->Release();
  }
  if (FAILED(outcome)) fail(outcome, classId);
  return std::make_shared<RegisteredObject>(
      static_cast<IDispatch*>(created), publicClass([&](const PublicClass& each) { return each.classId == classId; }));
}

}  // namespace mirvane::embedding
