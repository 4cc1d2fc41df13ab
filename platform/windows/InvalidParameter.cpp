#include "InvalidParameter.h"

#include <windows.h>

#include <array>
#include <cerrno>
#include <cstdlib>

namespace norv::platform::windows {

namespace {

using Handler = _invalid_parameter_handler;

// The runtime that programs of current compilers share; null when no one in this process does.
HMODULE SharedRuntime() {
  return GetModuleHandleW(L"ucrtbase.dll");
}

template <typename Function>
Function* Find(HMODULE module, const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

void SetSharedErrno(HMODULE runtime) {
  if (auto* const place = Find<int*()>(runtime, "_errno")) {
    *place() = EINVAL;
  }
}

// A thread's own handler goes before the one of the process.
Handler SharedHandler(HMODULE runtime) {
  for (const char* name : std::array{"_get_thread_local_invalid_parameter_handler", "_get_invalid_parameter_handler"}) {
    if (auto* const get = Find<Handler()>(runtime, name)) {
      if (const Handler handler = get()) {
        return handler;
      }
    }
  }
  return nullptr;
}

}  // namespace

void RaiseInvalidParameter() {
  errno = EINVAL;
  Handler handler = nullptr;
  if (const HMODULE runtime = SharedRuntime()) {
    SetSharedErrno(runtime);
    handler = SharedHandler(runtime);
  }
  if (handler == nullptr) {
    handler = _get_invalid_parameter_handler();
  }
  if (handler != nullptr) {
    handler(nullptr, nullptr, nullptr, 0, 0);  // what every runtime but a debugging one tells
  }
}

}  // namespace norv::platform::windows
