// COM on the calling thread.
#pragma once

#include <windows.h>

namespace norv::platform::windows {

// Uses COM for as long as it lives, in whatever way the host has initialised it on this thread: not at all, as part of
// the process's multithreaded apartment, or as an apartment of its own. It leaves COM as it found it, and never sets
// the process's security, which is the host's.
class ComUse {
 public:
  ComUse();
  ComUse(const ComUse&) = delete;
  ComUse& operator=(const ComUse&) = delete;
  ~ComUse();

  // S_OK when COM can be used.
  HRESULT Result() const { return result_; }

 private:
  HRESULT result_ = S_OK;
  bool counted_ = false;  // this use is one that has to be given back
  DWORD thread_;
};

}  // namespace norv::platform::windows
