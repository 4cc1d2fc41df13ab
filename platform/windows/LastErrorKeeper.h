// The system's last-error code, kept across a clean-up.
#pragma once

#include <windows.h>

namespace norv::platform::windows {

// What the destructors of handles and buffers do sets the code anew. Whoever reads it wants to know why the operation
// failed, and not how the clean-up went: a keeper made before the owners of an operation puts the code back after them.
class LastErrorKeeper {
 public:
  LastErrorKeeper() = default;
  LastErrorKeeper(const LastErrorKeeper&) = delete;
  LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;
  ~LastErrorKeeper() {
    if (kept_) {
      SetLastError(code_);
    }
  }

  // The code as it stands now is the one that stays.
  void Keep() {
    code_ = GetLastError();
    kept_ = true;
  }

 private:
  DWORD code_ = 0;
  bool kept_ = false;
};

}  // namespace norv::platform::windows
