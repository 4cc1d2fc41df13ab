// The owner of what Windows closes with CloseHandle.
#pragma once

#include <windows.h>

#include <utility>

namespace norv::base {

// Null and INVALID_HANDLE_VALUE are no handles: Windows' functions fail with the one or the other.
class Handle {
 public:
  Handle() = default;
  explicit Handle(HANDLE handle) : handle_(handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { Close(); }

  bool IsOpen() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Get() const { return handle_; }

  // For an out-parameter; what was held before is closed.
  HANDLE* Receive() {
    Close();
    return &handle_;
  }

  // The handle is the caller's from now on.
  HANDLE Release() { return std::exchange(handle_, nullptr); }

  void Close() {
    if (IsOpen()) {
      CloseHandle(handle_);
    }
    handle_ = nullptr;
  }

 private:
  HANDLE handle_ = nullptr;
};

}  // namespace norv::base
