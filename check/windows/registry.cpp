#include "check/windows/registry.h"

#include <algorithm>
#include <array>

namespace mirvane::check {
namespace {

class Key {
 public:
  Key(HKEY root, const std::wstring& name, REGSAM view) {
    if (RegOpenKeyExW(root, name.c_str(), 0, KEY_READ | view, &key_) != ERROR_SUCCESS) key_ = nullptr;
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

std::wstring expanded(const std::wstring& text) {
  std::wstring full(ExpandEnvironmentStringsW(text.c_str(), nullptr, 0), L'\0');
  full.resize(ExpandEnvironmentStringsW(text.c_str(), full.data(), static_cast<DWORD>(full.size())));
  full.resize(std::min(full.find(L'\0'), full.size()));  // the count includes the terminator
  return full;
}

std::wstring textIn(HKEY key, const wchar_t* name) {
  DWORD type = 0, size = 0;
  if (RegQueryValueExW(key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) return {};
  if (type != REG_SZ && type != REG_EXPAND_SZ) return {};
  std::wstring text(size / sizeof(wchar_t), L'\0');
  if (RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size) != ERROR_SUCCESS) {
    return {};
  }
  text.resize(std::min(text.find(L'\0'), text.size()));  // with or without its terminator
  return type == REG_EXPAND_SZ ? expanded(text) : text;
}

}  // namespace

std::wstring registryText(HKEY root, const std::wstring& key, const wchar_t* name, REGSAM view) {
  const Key opened(root, key, view);
  return opened.get() == nullptr ? std::wstring() : textIn(opened.get(), name);
}

std::vector<std::pair<std::wstring, std::wstring>> registryTexts(HKEY root, const std::wstring& key) {
  const Key opened(root, key, 0);
  std::vector<std::pair<std::wstring, std::wstring>> all;
  std::array<wchar_t, 1024> name{};
  for (DWORD i = 0, length = name.size(); opened.get() != nullptr; ++i, length = name.size()) {
    if (RegEnumValueW(opened.get(), i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
      break;
    all.emplace_back(name.data(), textIn(opened.get(), name.data()));
  }
  return all;
}

}  // namespace mirvane::check
