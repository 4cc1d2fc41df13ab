// The end of a watch, asked for by a key or a signal.
#pragma once

#include <chrono>

namespace norv::tool {

enum class Pause { IsOver, IsInterrupted, OutputIsClosed };

// While it lives, an interrupt (Ctrl-C, and on Linux SIGINT, SIGTERM and SIGHUP) does not end the process but the pause
// that it meets, or else the next one. What is being written then has a second to be taken: after that the write fails,
// or on Windows the process ends. A second interrupt ends the process as ever, and one that was ignored when the
// process began stays ignored. There is one at a time.
class Interrupt {
 public:
  Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;
  ~Interrupt();

  // True once there was an interrupt.
  bool IsTold() const;

  // Waits, and not at all once there was an interrupt. Where the system tells that nobody reads standard output any
  // more, that ends the pause, too.
  Pause WaitUntil(std::chrono::steady_clock::time_point end);
};

}  // namespace norv::tool
