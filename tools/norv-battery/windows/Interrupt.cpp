#include "watch/Interrupt.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <system_error>

#include "ExitStatus.h"

namespace norv::tool {

namespace {

// Both live as long as the process: the thread of an interrupt may still look at them.
HANDLE interrupted = nullptr;
HANDLE ended = nullptr;

// Called on a thread of its own. What it does not handle ends the process. The command has a second to end by itself:
// nothing else ends one that waits for the reader of its output.
BOOL WINAPI TellInterrupt(DWORD) {
  constexpr DWORD kPatience = 1000;  // milliseconds
  static std::atomic<bool> isSecond{false};
  if (isSecond.exchange(true)) {
    return FALSE;
  }
  SetEvent(interrupted);
  if (WaitForSingleObject(ended, kPatience) == WAIT_TIMEOUT) {
    ExitProcess(kSuccess);
  }
  return TRUE;
}

}  // namespace

Interrupt::Interrupt() {
  interrupted = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  ended = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  if (interrupted == nullptr || ended == nullptr) {
    throw std::system_error(ENOMEM, std::generic_category(), "the command cannot wait");
  }
  SetConsoleCtrlHandler(TellInterrupt, TRUE);
}

Interrupt::~Interrupt() {
  SetConsoleCtrlHandler(TellInterrupt, FALSE);
  SetEvent(ended);
}

bool Interrupt::IsTold() const {
  return WaitForSingleObject(interrupted, 0) == WAIT_OBJECT_0;
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
