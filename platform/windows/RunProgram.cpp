#include "RunProgram.h"

#include <windows.h>

#include "NarrowPath.h"
#include "base/windows/Handle.h"

namespace norv::platform::windows {

bool RunProgram(const char* path) {
  if (!IsFullPath(path)) {
    SetLastError(ERROR_BAD_PATHNAME);
    return false;
  }
  STARTUPINFOA startup{};
  static_assert(sizeof startup == 104);
  startup.cb = sizeof startup;
  startup.wShowWindow = SW_RESTORE;  // without effect: no flag says that the member is used
  PROCESS_INFORMATION started{};
  if (CreateProcessA(path, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started) == FALSE) {
    return false;
  }
  const base::Handle process(started.hProcess);
  const base::Handle firstThread(started.hThread);
  WaitForSingleObject(process.Get(), INFINITE);
  return true;
}

}  // namespace norv::platform::windows
