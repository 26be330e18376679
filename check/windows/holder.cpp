#include <winternl.h>

#include <array>
#include <atomic>
#include <cwchar>
#include <mutex>

#include "check/machine.h"
#include "platform/windows/windows.h"

// Who has a port open, only the list of all open handles tells. Looking at one of them may take for ever, as with a
// pipe on which its program waits, so threads look that can be left behind.
namespace mirvane::check {
namespace {

// Classes of information that the headers leave out.
constexpr int kExtendedHandles = 64;
constexpr int kObjectName = 1;
using QuerySystem = LONG WINAPI(int, void*, ULONG, ULONG*);
using QueryObject = LONG WINAPI(HANDLE, int, void*, ULONG, ULONG*);

struct Handle {
  void* object;
  ULONG_PTR process;
  ULONG_PTR value;
  ULONG access;
  USHORT origin;
  USHORT type;
  ULONG attributes;
  ULONG reserved;
};
struct HandleList {
  ULONG_PTR count;
  ULONG_PTR reserved;
  Handle first;
};

template <class F>
F* systemCall(const char* name) {
  auto* const entry = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name);
  return reinterpret_cast<F*>(reinterpret_cast<void*>(entry));
}

std::vector<Handle> allHandles() {
  constexpr std::size_t kMost = std::size_t{256} << 20U;
  auto* const query = systemCall<QuerySystem>("NtQuerySystemInformation");
  for (std::size_t size = std::size_t{1} << 20U; query != nullptr && size < kMost; size *= 2) {
    std::vector<std::byte> bytes(size);
    ULONG length = 0;
    if (query(kExtendedHandles, bytes.data(), static_cast<ULONG>(size), &length) < 0) continue;
    const auto& list = *reinterpret_cast<const HandleList*>(bytes.data());
    return {&list.first, &list.first + list.count};
  }
  return {};
}

// The files that programs have open for reading and writing; those of this one tell which handles are files.
std::vector<Handle> openFiles() {
  const HANDLE own =
      CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  std::vector<Handle> all = allHandles();
  const auto self = static_cast<ULONG_PTR>(GetCurrentProcessId());
  int type = -1;
  for (const Handle& each : all) {
    if (each.process == self && each.value == reinterpret_cast<ULONG_PTR>(own)) type = each.type;
  }
  CloseHandle(own);
  constexpr ULONG kBothWays = FILE_READ_DATA | FILE_WRITE_DATA;
  std::erase_if(all, [&](const Handle& each) {
    return each.process == self || each.type != type || (each.access & kBothWays) != kBothWays;
  });
  return all;
}

std::wstring nameOfObject(HANDLE handle) {
  auto* const query = systemCall<QueryObject>("NtQueryObject");
  alignas(UNICODE_STRING) std::array<std::byte, 2048> bytes{};
  ULONG length = 0;
  if (query == nullptr || query(handle, kObjectName, bytes.data(), bytes.size(), &length) < 0) return {};
  const auto& name = *reinterpret_cast<const UNICODE_STRING*>(bytes.data());
  return name.Buffer == nullptr ? std::wstring() : std::wstring(name.Buffer, name.Length / sizeof(wchar_t));
}

std::string programOf(HANDLE process, ULONG_PTR id) {
  std::array<wchar_t, 1024> path{};
  DWORD length = path.size();
  QueryFullProcessImageNameW(process, 0, path.data(), &length);
  const std::wstring name(path.data(), length);
  return nameOf(name.substr(name.rfind(L'\\') + 1)) + " (" + std::to_string(id) + ")";
}

// What the threads that look have in common; never destroyed, as one of them may still be looking.
struct Search {
  std::wstring device;
  std::vector<Handle> handles;
  std::mutex mutex;
  std::size_t next = 0;
  int turn = 0;
  std::optional<std::string> found;

  std::optional<std::string> look(const Handle& handle) const {
    const HANDLE process =
        OpenProcess(PROCESS_DUP_HANDLE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(handle.process));
    if (process == nullptr) return std::nullopt;
    std::optional<std::string> holder;
    HANDLE copy = nullptr;
    if (DuplicateHandle(process, reinterpret_cast<HANDLE>(handle.value), GetCurrentProcess(), &copy, 0, FALSE,
                        DUPLICATE_SAME_ACCESS) != FALSE) {
      if (GetFileType(copy) == FILE_TYPE_CHAR && _wcsicmp(nameOfObject(copy).c_str(), device.c_str()) == 0) {
        holder = programOf(process, handle.process);
      }
      CloseHandle(copy);
    }
    CloseHandle(process);
    return holder;
  }

  // Until all is looked at, or somebody else has taken the turn.
  void run(int own) {
    for (;;) {
      std::size_t i = 0;
      {
        const std::scoped_lock lock(mutex);
        if (turn != own || found || next >= handles.size()) return;
        i = next++;
      }
      auto holder = look(handles[i]);
      const std::scoped_lock lock(mutex);
      if (turn == own && holder) found = std::move(holder);
    }
  }
};

struct Turn {
  Search& search;
  int number;

  static DWORD WINAPI run(void* given) {
    const std::unique_ptr<Turn> turn(static_cast<Turn*>(given));
    turn->search.run(turn->number);
    return 0;
  }
};

}  // namespace

std::optional<std::string> holderOf(const std::string& port) {
  constexpr DWORD kLook = 300;
  constexpr int kMostTurns = 20;
  std::array<wchar_t, 1024> device{};
  if (QueryDosDeviceW(pathOf(port).c_str(), device.data(), device.size()) == 0) return std::nullopt;
  auto& search = *new Search;
  search.device = device.data();
  search.handles = openFiles();
  for (bool isOver = false; !isOver && search.turn < kMostTurns;) {
    const HANDLE thread = CreateThread(nullptr, 0, &Turn::run, new Turn{search, search.turn}, 0, nullptr);
    for (std::size_t before = search.handles.size(); !isOver;) {
      isOver = WaitForSingleObject(thread, kLook) == WAIT_OBJECT_0;
      const std::scoped_lock lock(search.mutex);
      if (!isOver && before == search.next) break;  // it has looked at the same handle all the time
      before = search.next;
    }
    CloseHandle(thread);
    const std::scoped_lock lock(search.mutex);
    ++search.turn;
  }
  return search.found;
}

}  // namespace mirvane::check
