#include "watch/Interrupt.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <system_error>

namespace norv::tool {

namespace {

HANDLE interrupted = nullptr;

// Called on a thread of its own. What it does not handle ends the process.
BOOL WINAPI TellInterrupt(DWORD) {
  static std::atomic<bool> isSecond{false};
  if (isSecond.exchange(true)) {
    return FALSE;
  }
  SetEvent(interrupted);
  return TRUE;
}

}  // namespace

Interrupt::Interrupt() {
  interrupted = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  if (interrupted == nullptr) {
    throw std::system_error(ENOMEM, std::generic_category(), "the command cannot wait");
  }
  SetConsoleCtrlHandler(TellInterrupt, TRUE);
}

Interrupt::~Interrupt() {
  SetConsoleCtrlHandler(TellInterrupt, FALSE);
  CloseHandle(interrupted);
}

Pause Interrupt::WaitUntil(std::chrono::steady_clock::time_point end) {
  constexpr std::chrono::milliseconds kMost{60000};
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    const auto wait = std::clamp(left, std::chrono::milliseconds(0), kMost);
    if (WaitForSingleObject(interrupted, static_cast<DWORD>(wait.count())) == WAIT_OBJECT_0) {
      return Pause::IsInterrupted;
    }
    if (std::chrono::steady_clock::now() >= end) {
      return Pause::IsOver;
    }
  }
}

}  // namespace norv::tool
