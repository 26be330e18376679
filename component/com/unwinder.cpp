#include "platform/windows/windows.h"

// 32 bits only. There a module's start-up code gives its unwind tables to the compiler's shared runtime if the program
// has loaded that, as does every program or add-in built the usual way with the same compiler. The unwinder in this DLL
// does not look there: it would find no handler for its first exception and end the process.

extern "C" void __register_frame_info(const void* tables, void* kept);

namespace mirvane::com {
namespace {

constexpr std::size_t kNameLength = IMAGE_SIZEOF_SHORT_NAME;  // longer names are cut off

const void* unwindingTables() {
  const auto* base = reinterpret_cast<const char*>(platform::ownModule());
  const auto* headers =
      reinterpret_cast<const IMAGE_NT_HEADERS*>(base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
  const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(headers);
  for (int i = 0; i < headers->FileHeader.NumberOfSections; ++i, ++section) {
    const std::string_view name(reinterpret_cast<const char*>(section->Name), kNameLength);
    if (name == std::string_view(".eh_frame").substr(0, kNameLength)) return base + section->VirtualAddress;
  }
  return nullptr;
}

[[gnu::constructor]] void keepOwnUnwinder() {
  static void* kept[12];  // the unwinder's own record, kept as long as it has the tables
  if (GetModuleHandleW(L"libgcc_s_dw2-1.dll") == nullptr) return;
  if (const void* const tables = unwindingTables()) __register_frame_info(tables, kept);
}

}  // namespace
}  // namespace mirvane::com
