#include "watch/Interrupt.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <system_error>

#include "posix/Signals.h"

namespace norv::tool {

namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

// A pipe, which a signal handler may write to and poll() waits for.
std::array<int, 2> pipeEnds = {-1, -1};

// While one of these passes, what is being written may still be taken.
constexpr unsigned int kPatience = 1;  // seconds

extern "C" void TellInterrupt(int) {
  const int code = errno;
  const char byte = 1;
  const auto written = ::write(pipeEnds[1], &byte, 1);
  static_cast<void>(written);  // a pipe that is full is full of interrupts
  ::alarm(kPatience);
  errno = code;
}

// Makes a system call that waits fail, again and again: it may have begun to wait only just after an alarm.
extern "C" void EndWait(int) {
  ::alarm(kPatience);
}

// Up to one minute of what is left until `end`, rounded up.
int Milliseconds(std::chrono::steady_clock::time_point end) {
  constexpr std::chrono::milliseconds kMost{60000};
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
  return static_cast<int>(std::clamp(left, std::chrono::milliseconds(0), kMost).count());
}

}  // namespace

Interrupt::Interrupt() {
  if (::pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "the command cannot wait");
  }
  // What could not be written is not to be waited for once more when the process ends.
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  Handle(SIGALRM, EndWait, 0);
  for (const int signal : kSignals) {
    HandleUnlessIgnored(signal, TellInterrupt, SA_RESTART | static_cast<int>(SA_RESETHAND));
  }
}

Interrupt::~Interrupt() {
  for (const int signal : kSignals) {
    HandleUnlessIgnored(signal, SIG_DFL, 0);
  }
  ::alarm(0);
  Handle(SIGALRM, SIG_DFL, 0);
  for (const int end : pipeEnds) {
    ::close(end);
  }
}

bool Interrupt::IsTold() const {
  pollfd watched = {pipeEnds[0], POLLIN, 0};
  return ::poll(&watched, 1, 0) > 0;
}

Pause Interrupt::WaitUntil(std::chrono::steady_clock::time_point end) {
  for (;;) {
    // The write end of a pipe whose reader is gone is in error, whatever is waited for.
    std::array<pollfd, 2> watched = {pollfd{pipeEnds[0], POLLIN, 0}, pollfd{STDOUT_FILENO, 0, 0}};
    const int ready = ::poll(watched.data(), watched.size(), Milliseconds(end));
    if (ready > 0 && watched[0].revents != 0) {
      return Pause::IsInterrupted;
    }
    if (ready > 0 && watched[1].revents != 0) {
      return Pause::OutputIsClosed;
    }
    if (std::chrono::steady_clock::now() >= end) {
      return Pause::IsOver;
    }
  }
}

}  // namespace norv::tool
