#include "com/foreign_object.h"

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "com/variants.h"
#include "platform/windows/floating_point.h"
#include "text/code_page.h"

namespace mirvane::com {
namespace {

WORD flagsFor(ClassInfo::Access access) {
  using Access = ClassInfo::Access;
  switch (access) {
    case Access::call:
      return DISPATCH_METHOD;
    case Access::read:
      return DISPATCH_PROPERTYGET;
    case Access::callOrRead:
      return DISPATCH_METHOD | DISPATCH_PROPERTYGET;
    case Access::write:
      break;
  }
  return DISPATCH_PROPERTYPUT;
}

// A failed call's description of its error.
class Exception : public EXCEPINFO {
 public:
  Exception() : EXCEPINFO() {}
  Exception(const Exception&) = delete;
  Exception& operator=(const Exception&) = delete;
  ~Exception() { clear(); }

  void clear() {
    for (BSTR text : {bstrSource, bstrDescription, bstrHelpFile}) SysFreeString(text);
    static_cast<EXCEPINFO&>(*this) = {};
  }

  [[noreturn]] void raise(HRESULT outcome) {
    if (outcome == DISP_E_EXCEPTION) {
      if (pfnDeferredFillIn != nullptr) pfnDeferredFillIn(this);
      if (FAILED(scode)) outcome = scode;
    }
    if (outcome == DISP_E_UNKNOWNNAME) outcome = DISP_E_MEMBERNOTFOUND;
    if (outcome == E_OUTOFMEMORY) throw std::bad_alloc();
    switch (const auto code = static_cast<AutomationCode>(outcome)) {
      case AutomationCode::memberNotFound:
      case AutomationCode::parameterNotFound:
      case AutomationCode::typeMismatch:
      case AutomationCode::overflow:
      case AutomationCode::badIndex:
      case AutomationCode::badParameterCount:
      case AutomationCode::objectNotSet:
        throw AutomationError(code);
    }
    throw std::runtime_error(description(outcome));
  }

 private:
  std::string description(HRESULT outcome) const {
    if (SysStringLen(bstrDescription) > 0) return toUtf8(textOf(bstrDescription));
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "Automation error %08lX", static_cast<unsigned long>(outcome));
    return text.data();
  }
};

// One argument of a call: a value, or a variable that the object can write to.
struct ForeignArgument {
  ForeignArgument() = default;
  ForeignArgument(const ForeignArgument&) = delete;
  ForeignArgument& operator=(const ForeignArgument&) = delete;
  ~ForeignArgument() { SysFreeString(text); }

  void read(const Argument& argument) {
    variable = argument.variable<Text>();
    if (variable != nullptr) {
      text = toBstr(*variable);
      given.vt = VT_BYREF | VT_BSTR;
      given.pbstrVal = &text;
    } else if (argument.missing()) {
      given.vt = VT_ERROR;
      given.scode = DISP_E_PARAMNOTFOUND;
    } else {
      toVariant(argument.value(), given);
    }
  }

  void writeBack() const {
    if (variable != nullptr) *variable = textOf(text);
  }

  Variant given;
  BSTR text = nullptr;
  Text* variable = nullptr;
};

}  // namespace

ComPtr<IDispatch> ForeignObject::dispatch() const {
  dispatch_->AddRef();
  return ComPtr<IDispatch>(dispatch_.get());
}

const ClassInfo& ForeignObject::classInfo() const {
  static const ClassInfo kNoClassOfOurs("Object", {});
  return kNoClassOfOurs;
}

DISPID ForeignObject::idOf(std::string_view member) const {
  if (member == kDefaultMember) return DISPID_VALUE;
  std::wstring name(member.begin(), member.end());
  LPOLESTR names = name.data();
  DISPID id = DISPID_UNKNOWN;
  const platform::HostFloatingPoint host;
  const HRESULT outcome = dispatch_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(outcome)) Exception().raise(outcome);
  return id;
}

Value ForeignObject::invoke(std::string_view member, ClassInfo::Access access, Arguments arguments) {
  const bool write = access == ClassInfo::Access::write;
  const DISPID id = idOf(member);
  // The object expects the arguments in reverse order.
  std::vector<ForeignArgument> held(arguments.size());
  std::vector<VARIANT> given;
  for (std::size_t i = arguments.size(); i-- > 0;) {
    held[i].read(arguments[i]);
    given.push_back(held[i].given);
  }
  DISPID valueId = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{given.data(), write ? &valueId : nullptr, static_cast<UINT>(given.size()), write ? 1U : 0U};
  Variant result;
  Exception exception;
  const auto attempt = [&](WORD flags) {
    const platform::HostFloatingPoint host;
    return dispatch_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, write ? nullptr : &result,
                             &exception, nullptr);
  };
  HRESULT outcome = attempt(flagsFor(access));
  // Many properties that hold an object can only be written by reference.
  if (write && outcome == DISP_E_MEMBERNOTFOUND && !given.empty() && given.front().vt == VT_DISPATCH) {
    exception.clear();
    outcome = attempt(DISPATCH_PROPERTYPUTREF);
  }
  for (const ForeignArgument& argument : held) argument.writeBack();
  if (FAILED(outcome)) exception.raise(outcome);
  return valueOf(result);
}

ObjectPtr createForeignObject(TextView programmaticId) {
  const platform::HostFloatingPoint host;
  CLSID id{};
  void* created = nullptr;
  if (FAILED(CLSIDFromProgID(toWide(programmaticId).c_str(), &id)) ||
      FAILED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch, &created))) {
    return nullptr;
  }
  return std::make_shared<ForeignObject>(ComPtr<IDispatch>(static_cast<IDispatch*>(created)));
}

}  // namespace mirvane::com
