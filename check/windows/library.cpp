#include "check/windows/library.h"

#include <array>
#include <fstream>

#include "check/machine.h"
#include "platform/windows/windows.h"

namespace mirvane::check {
namespace {

namespace fs = std::filesystem;

template <class T>
T numberAt(std::ifstream& stream, std::streamoff offset) {
  std::array<unsigned char, sizeof(T)> bytes{};
  stream.seekg(offset);
  stream.read(reinterpret_cast<char*>(bytes.data()), bytes.size());
  std::uint64_t number = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) number = number << 8U | bytes[i];
  return static_cast<T>(number);
}

std::wstring folderOf(UINT(WINAPI* ask)(LPWSTR, UINT)) {
  std::array<wchar_t, MAX_PATH> path{};
  ask(path.data(), path.size());
  return path.data();
}

// Beside this program, or in the release's folder for that bitness.
fs::path inPackage(const wchar_t* name, int bits) {
  const fs::path here = ownProgram().parent_path();
  const std::wstring folder = L"win" + std::to_wstring(bits);
  for (const fs::path& candidate : {here / name, here / folder / name, here.parent_path() / folder / name}) {
    if (bitsOf(candidate) == bits) return candidate;
  }
  return {};
}

}  // namespace

int bitsOf(const fs::path& file) {
  constexpr std::streamoff kHeaderOffset = 0x3C;
  constexpr std::uint32_t kSignature = 0x00004550;  // "PE"
  std::ifstream stream(file, std::ios::binary);
  const auto header = static_cast<std::streamoff>(numberAt<std::uint32_t>(stream, kHeaderOffset));
  if (!stream || numberAt<std::uint32_t>(stream, header) != kSignature) return 0;
  switch (numberAt<std::uint16_t>(stream, header + 4)) {
    case IMAGE_FILE_MACHINE_I386:
      return 32;
    case IMAGE_FILE_MACHINE_AMD64:
      return 64;
    default:
      return 0;
  }
}

std::string versionOf(const fs::path& file) {
  DWORD handle = 0;
  std::string block(GetFileVersionInfoSizeW(file.c_str(), &handle), '\0');
  VS_FIXEDFILEINFO* version = nullptr;
  UINT size = 0;
  if (block.empty() || GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(block.size()), block.data()) == FALSE ||
      VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&version), &size) == FALSE) {
    return "?";
  }
  return std::to_string(HIWORD(version->dwFileVersionMS)) + "." + std::to_string(LOWORD(version->dwFileVersionMS)) +
         "." + std::to_string(HIWORD(version->dwFileVersionLS));
}

bool isSystemOf64Bits() {
  SYSTEM_INFO info{};
  GetNativeSystemInfo(&info);
  return info.wProcessorArchitecture != PROCESSOR_ARCHITECTURE_INTEL;
}

fs::path libraryOfPackage(int bits) { return inPackage(L"MirvaneEFT.dll", bits); }

fs::path registrarOf(int bits) {
  const std::wstring folder =
      bits == 32 && isSystemOf64Bits() ? folderOf(&GetSystemWow64DirectoryW) : folderOf(&GetSystemDirectoryW);
  return fs::path(folder) / L"regsvr32.exe";
}

std::vector<Twin> twins() {
  std::vector<Twin> all;
  for (const int bits : {32, 64}) {
    if (bits == 64 && !isSystemOf64Bits()) continue;
    const bool isOwn = bits == static_cast<int>(8 * sizeof(void*));
    all.push_back({bits, isOwn ? ownProgram() : inPackage(L"mirvane-check.exe", bits)});
  }
  return all;
}

}  // namespace mirvane::check
