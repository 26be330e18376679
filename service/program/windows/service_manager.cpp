#include "service/program/service_manager.h"

#include "platform/windows/windows.h"
// What they need stands in the former.
#include <sddl.h>
#include <shlobj.h>

#include <array>
#include <csignal>
#include <memory>

#include "http/machine.h"
#include "text/code_page.h"

namespace mirvane::service {
namespace {

constexpr const wchar_t* kAccount = L"NT AUTHORITY\\LocalService";
/// Administrators own the folder, as anybody may have made it in the common one. They and Windows may do everything
/// there, the account may read, write and delete, and nobody else anything.
constexpr const wchar_t* kFolderRights = L"O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1301bf;;;LS)";
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
  // Whoever has made another folder has settled who may use it.
  if (!std::filesystem::create_directories(folder) && folder != servicesFolder()) return;
  PSECURITY_DESCRIPTOR rights = nullptr;
  ConvertStringSecurityDescriptorToSecurityDescriptorW(kFolderRights, SDDL_REVISION_1, &rights, nullptr);
  const bool isDone = SetFileSecurityW(
      folder.c_str(), OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION,
      rights);
  LocalFree(rights);
  if (!isDone) refuse(utf8Of(folder));
}

void install(const std::string& name, const std::vector<std::string>& arguments,
             const std::vector<std::filesystem::path>& folders) {
  const Handle manager = openManager();
  for (const std::filesystem::path& folder : folders) makeFolder(folder);
  std::wstring line = platform::quoted(platform::ownPath());
  for (const std::string& argument : arguments) line += L" " + platform::quoted(wide(argument));
  const Handle service(CreateServiceW(manager.get(), wide(name).c_str(), wide("MirvaneEFT: " + name).c_str(),
                                      SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS, SERVICE_AUTO_START,
                                      SERVICE_ERROR_NORMAL, line.c_str(), nullptr, nullptr, nullptr, kAccount,
                                      nullptr));
  if (!service) refuse(name);
  describe(service.get());
  if (!StartServiceW(service.get(), 0, nullptr)) refuse(name + " is installed, and does not start");
  if (settled(service.get()) != SERVICE_RUNNING) {
    throw ManagerError(
        name + " is installed, and has ended: see its log, or whether NT AUTHORITY\\LocalService may write one", 1);
  }
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
