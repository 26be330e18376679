#include "service/program/service_manager.h"

#include "platform/windows/windows.h"
// What they need stands in the former.
#include <aclapi.h>
#include <shlobj.h>

#include <array>
#include <csignal>
#include <memory>

#include "text/code_page.h"

namespace mirvane::service {
namespace {

/// As the installer ends, too.
constexpr int kElevationRequired = 740;

std::wstring wide(const std::string& utf8) { return toWide(fromUtf8(utf8)); }

/// Throws for the error that Windows has told.
[[noreturn]] void refuse(const std::string& what, DWORD error = GetLastError()) {
  if (error == ERROR_ACCESS_DENIED) {
    throw ManagerError("only an administrator can do this: open the console with \"Run as administrator\"",
                       kElevationRequired);
  }
  if (error == ERROR_SERVICE_EXISTS) throw ManagerError(what + ": it is installed; uninstall it first", 1);
  if (error == ERROR_SERVICE_DOES_NOT_EXIST) throw ManagerError(what + ": it is not installed", 1);
  throw ManagerError(what + ": Windows reports error " + std::to_string(error), 1);
}

// ---- Run by the service manager, which knows one service in a process

SERVICE_STATUS_HANDLE statusHandle = nullptr;
const std::function<int(const Manager&)>* managed = nullptr;
int exitCode = 0;

void report(DWORD state, int code = 0) {
  SERVICE_STATUS status{};
  status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
  status.dwCurrentState = state;
  status.dwControlsAccepted = state == SERVICE_RUNNING ? SERVICE_ACCEPT_STOP | SERVICE_ACCEPT_SHUTDOWN : 0;
  status.dwWin32ExitCode = code == 0 ? NO_ERROR : ERROR_SERVICE_SPECIFIC_ERROR;
  status.dwServiceSpecificExitCode = static_cast<DWORD>(code);
  status.dwWaitHint = state == SERVICE_RUNNING || state == SERVICE_STOPPED ? 0 : 30'000;
  SetServiceStatus(statusHandle, &status);
}

DWORD WINAPI control(DWORD code, DWORD /*event*/, void* /*data*/, void* /*context*/) {
  if (code == SERVICE_CONTROL_INTERROGATE) return NO_ERROR;
  if (code != SERVICE_CONTROL_STOP && code != SERVICE_CONTROL_SHUTDOWN) return ERROR_CALL_NOT_IMPLEMENTED;
  report(SERVICE_STOP_PENDING);
  std::raise(SIGTERM);
  return NO_ERROR;
}

void WINAPI serviceMain(DWORD /*count*/, wchar_t** /*arguments*/) {
  statusHandle = RegisterServiceCtrlHandlerExW(L"", control, nullptr);
  report(SERVICE_START_PENDING);
  exitCode = (*managed)({[] { report(SERVICE_RUNNING); }, [] { report(SERVICE_STOPPED); }});
  report(SERVICE_STOPPED, exitCode);
}

// ---- Its list of services

struct Closer {
  void operator()(SC_HANDLE handle) const { CloseServiceHandle(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, Closer>;

Handle openManager() {
  Handle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CREATE_SERVICE));
  if (!manager) refuse("the service manager");
  return manager;
}

/// As CommandLineToArgvW takes it apart: backslashes count double where a quote follows.
std::wstring quoted(const std::wstring& argument) {
  std::wstring text = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t c : argument) {
    if (c == L'"') text.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    text += c;
  }
  return text.append(backslashes, L'\\') + L"\"";
}

/// What Windows shows of it, and that it starts anew whenever it fails, with an exit code too. It serves without these
/// as well.
void describe(SC_HANDLE service) {
  wchar_t text[] = L"Receipts over HTTP, each exactly once, at one cash register";
  SERVICE_DESCRIPTIONW description{text};
  ChangeServiceConfig2W(service, SERVICE_CONFIG_DESCRIPTION, &description);
  std::array<SC_ACTION, 3> actions{{{SC_ACTION_RESTART, 1000}, {SC_ACTION_RESTART, 5000}, {SC_ACTION_RESTART, 30'000}}};
  SERVICE_FAILURE_ACTIONSW failure{};
  failure.dwResetPeriod = 3600;
  failure.cActions = actions.size();
  failure.lpsaActions = actions.data();
  ChangeServiceConfig2W(service, SERVICE_CONFIG_FAILURE_ACTIONS, &failure);
  SERVICE_FAILURE_ACTIONS_FLAG withCode{TRUE};
  ChangeServiceConfig2W(service, SERVICE_CONFIG_FAILURE_ACTIONS_FLAG, &withCode);
}

/// Its state once it neither starts nor stops any more, or hangs.
DWORD settled(SC_HANDLE service) {
  SERVICE_STATUS status{};
  for (int left = 1200; left > 0; --left) {
    QueryServiceStatus(service, &status);
    if (status.dwCurrentState != SERVICE_START_PENDING && status.dwCurrentState != SERVICE_STOP_PENDING) break;
    Sleep(50);
  }
  return status.dwCurrentState;
}

// ---- Who may use a folder

EXPLICIT_ACCESSW access(WELL_KNOWN_SID_TYPE who, DWORD rights, std::array<BYTE, SECURITY_MAX_SID_SIZE>& sid) {
  auto size = static_cast<DWORD>(sid.size());
  CreateWellKnownSid(who, nullptr, sid.data(), &size);
  EXPLICIT_ACCESSW entry{rights, GRANT_ACCESS, SUB_CONTAINERS_AND_OBJECTS_INHERIT, {}};
  entry.Trustee.TrusteeForm = TRUSTEE_IS_SID;
  entry.Trustee.ptstrName = reinterpret_cast<wchar_t*>(sid.data());
  return entry;
}

}  // namespace

std::optional<int> runManaged(const std::function<int(const Manager&)>& serve) {
  managed = &serve;
  wchar_t name[] = L"";
  const SERVICE_TABLE_ENTRYW table[] = {{name, serviceMain}, {nullptr, nullptr}};
  return StartServiceCtrlDispatcherW(table) ? std::optional(exitCode) : std::nullopt;
}

std::filesystem::path servicesFolder() {
  std::array<wchar_t, MAX_PATH> folder{};
  SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder.data());
  return std::filesystem::path(folder.data()) / "mirvane-service";
}

void makeFolder(const std::filesystem::path& folder) {
  if (folder == folder.root_path()) throw std::invalid_argument("the database takes a folder of its own");
  std::filesystem::create_directories(folder);
  const bool isOurs = folder == servicesFolder();
  std::array<std::array<BYTE, SECURITY_MAX_SID_SIZE>, 3> sids{};
  std::array<EXPLICIT_ACCESSW, 3> entries = {
      access(WinLocalServiceSid, FILE_GENERIC_READ | FILE_GENERIC_WRITE | FILE_GENERIC_EXECUTE | DELETE, sids[0]),
      access(WinLocalSystemSid, FILE_ALL_ACCESS, sids[1]),
      access(WinBuiltinAdministratorsSid, FILE_ALL_ACCESS, sids[2])};
  std::wstring path = folder.wstring();
  ACL* before = nullptr;
  ACL* after = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  GetNamedSecurityInfoW(path.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &before, nullptr,
                        &descriptor);
  SetEntriesInAclW(isOurs ? 3 : 1, entries.data(), isOurs ? nullptr : before, &after);
  // Anybody may make a folder in the common one, and its owner could open it to others.
  const DWORD what = isOurs ? PROTECTED_DACL_SECURITY_INFORMATION | OWNER_SECURITY_INFORMATION : 0;
  const DWORD error = SetNamedSecurityInfoW(path.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | what,
                                            sids[2].data(), nullptr, after, nullptr);
  LocalFree(after);
  LocalFree(descriptor);
  if (error != ERROR_SUCCESS) refuse(folder.string(), error);
}

void install(const std::string& name, const std::vector<std::string>& arguments,
             const std::vector<std::filesystem::path>& folders) {
  const Handle manager = openManager();
  for (const std::filesystem::path& folder : folders) makeFolder(folder);
  std::wstring line = quoted(platform::ownPath());
  for (const std::string& argument : arguments) line += L" " + quoted(wide(argument));
  const Handle service(CreateServiceW(manager.get(), wide(name).c_str(), wide("MirvaneEFT: " + name).c_str(),
                                      SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS, SERVICE_AUTO_START,
                                      SERVICE_ERROR_NORMAL, line.c_str(), nullptr, nullptr, nullptr,
                                      L"NT AUTHORITY\\LocalService", nullptr));
  if (!service) refuse(name);
  describe(service.get());
  if (!StartServiceW(service.get(), 0, nullptr)) refuse(name + " is installed, and does not start");
  if (settled(service.get()) != SERVICE_RUNNING)
    throw ManagerError(name + " is installed, and has ended: see its log", 1);
}

void uninstall(const std::string& name) {
  const Handle manager = openManager();
  const Handle service(OpenServiceW(manager.get(), wide(name).c_str(), SERVICE_ALL_ACCESS));
  if (!service) refuse(name);
  SERVICE_STATUS status{};
  if (ControlService(service.get(), SERVICE_CONTROL_STOP, &status)) settled(service.get());
  if (!DeleteService(service.get())) refuse(name);
}

}  // namespace mirvane::service
