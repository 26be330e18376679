#include <filesystem>

#include "bench/till.h"
#include "component/component.h"
#include "embedding/windows/registered_object.h"
#include "platform/windows/windows.h"
// Needs windows.h before it.
#include <psapi.h>

namespace mirvane::bench {
namespace {

std::filesystem::path componentFile() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(GetModuleHandleW(L"MirvaneEFT.dll"), path, MAX_PATH);
  return path;
}

}  // namespace

ObjectPtr createPublic(std::string_view className) {
  try {
    return embedding::createRegistered(fromUtf8(std::string(kTypeLibraryName) + "." + std::string(className)));
  } catch (const std::runtime_error& error) {
    fail(error.what());
  }
}

void makeRecordFolder() { std::filesystem::create_directory(componentFile().parent_path() / "records"); }

std::size_t memory() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.WorkingSetSize;
}

std::size_t componentSize() {
  std::error_code ignored;
  return static_cast<std::size_t>(std::filesystem::file_size(componentFile(), ignored));
}

}  // namespace mirvane::bench
