#include "ComUse.h"

#include <objbase.h>

namespace norv::platform::windows {

ComUse::ComUse() : thread_(GetCurrentThreadId()) {
  const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  counted_ = SUCCEEDED(result);  // S_OK, or S_FALSE where the host was first
  // The host has given the thread an apartment of its own, which serves as well.
  result_ = counted_ || result == RPC_E_CHANGED_MODE ? S_OK : result;
}

ComUse::~ComUse() {
  // The use counts for the thread that it began on; on another one it would be the host's that is given back.
  if (counted_ && thread_ == GetCurrentThreadId()) {
    CoUninitialize();
  }
}

}  // namespace norv::platform::windows
