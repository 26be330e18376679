#pragma once

// Automation objects in C++, without generated code: calls by dispatch id or name, arguments by value or reference.

#include <windows.h>
// Include windows.h first.
#include <ole2.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

/// A call that failed, with its HRESULT, such as DISP_E_TYPEMISMATCH.
class AutomationError : public std::runtime_error {
 public:
  AutomationError(const std::string& what, HRESULT code) : std::runtime_error(what), code_(code) {}
  HRESULT code() const { return code_; }

 private:
  HRESULT code_;
};

inline void check(HRESULT outcome, const char* what) {
  if (FAILED(outcome)) throw AutomationError(what, outcome);
}

/// A text that a component can read and write.
class Text {
 public:
  explicit Text(const wchar_t* value = L"") : value_(SysAllocString(value)) {}
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  ~Text() { SysFreeString(value_); }

  BSTR& bstr() { return value_; }
  std::string utf8() const {
    const int length = static_cast<int>(SysStringLen(value_));
    std::string bytes(3 * static_cast<size_t>(length) + 1, '\0');
    const int written =
        WideCharToMultiByte(CP_UTF8, 0, value_, length, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<size_t>(written));
    return bytes;
  }

 private:
  BSTR value_;
};

/// An argument of a call. A variable goes by reference, so that its result comes back in it; it must outlive the call.
class Argument {
 public:
  Argument(short& variable) { set(VT_BYREF | VT_I2, &variable); }
  Argument(double& variable) { set(VT_BYREF | VT_R8, &variable); }
  Argument(VARIANT_BOOL* variable) { set(VT_BYREF | VT_BOOL, variable); }
  Argument(Text& variable) { set(VT_BYREF | VT_BSTR, &variable.bstr()); }
  Argument(IDispatch* object) { set(VT_DISPATCH, object); }

  const VARIANT& variant() const { return variant_; }

 private:
  void set(int type, void* content) {
    variant_.vt = static_cast<VARTYPE>(type);
    variant_.byref = content;
  }

  VARIANT variant_{};
};

/// Owns a reference to an object.
template <class Interface = IDispatch>
class Object {
 public:
  explicit Object(Interface* object) : object_(object) {}
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  ~Object() {
    if (object_) object_->Release();
  }
  Interface* get() const { return object_; }

 private:
  Interface* object_;
};

/// Creates an object in this process, and asks it for the interface.
template <class Interface = IDispatch>
Interface* create(const CLSID& id, const IID& interfaceId = IID_IDispatch) {
  void* object = nullptr;
  check(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, interfaceId, &object), "CoCreateInstance");
  return static_cast<Interface*>(object);
}

/// Calls a member by its dispatch id, the arguments from the first to the last. The result is the caller's to clear.
inline VARIANT invoke(IDispatch* object, DISPID id, WORD kind, const std::vector<Argument>& arguments = {}) {
  // Invoke takes the arguments in reverse order.
  std::vector<VARIANT> reversed;
  for (const Argument& argument : arguments) reversed.insert(reversed.begin(), argument.variant());
  DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  VARIANT result{};
  check(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, &result, nullptr, nullptr), "Invoke");
  return result;
}

inline DISPID idOf(IDispatch* object, const wchar_t* name) {
  auto* names = const_cast<wchar_t*>(name);
  DISPID id = DISPID_UNKNOWN;
  check(object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id), "GetIDsOfNames");
  return id;
}
