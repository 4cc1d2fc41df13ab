#include "RunProgram.h"

#include <windows.h>

#include "NarrowPath.h"

namespace norv::platform::windows {

namespace {

// The process and its first thread, as CreateProcess hands them over.
class StartedProcess {
 public:
  StartedProcess() = default;
  StartedProcess(const StartedProcess&) = delete;
  StartedProcess& operator=(const StartedProcess&) = delete;
  ~StartedProcess() {
    if (information_.hProcess != nullptr) {
      CloseHandle(information_.hProcess);
      CloseHandle(information_.hThread);
    }
  }

  PROCESS_INFORMATION* Receive() { return &information_; }
  HANDLE Process() const { return information_.hProcess; }

 private:
  PROCESS_INFORMATION information_{};
};

}  // namespace

bool RunProgram(const char* path) {
  if (!IsFullPath(path)) {
    SetLastError(ERROR_BAD_PATHNAME);
    return false;
  }
  STARTUPINFOA startup{};
  static_assert(sizeof startup == 104);
  startup.cb = sizeof startup;
  startup.wShowWindow = SW_RESTORE;  // without effect: no flag says that the member is used
  StartedProcess started;
  if (CreateProcessA(path, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, started.Receive()) ==
      FALSE) {
    return false;
  }
  WaitForSingleObject(started.Process(), INFINITE);
  return true;
}

}  // namespace norv::platform::windows
