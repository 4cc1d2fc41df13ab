#include "watch/Interrupt.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace norv::tool {

namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

// A pipe, which a signal handler may write to and poll() waits for.
std::array<int, 2> pipeEnds = {-1, -1};

extern "C" void TellInterrupt(int) {
  const int code = errno;
  const char byte = 1;
  const auto written = ::write(pipeEnds[1], &byte, 1);
  static_cast<void>(written);  // a pipe that is full is full of interrupts
  errno = code;
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
  struct sigaction action = {};
  action.sa_handler = TellInterrupt;
  action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
  for (const int signal : kSignals) {
    ::sigaction(signal, &action, nullptr);
  }
}

Interrupt::~Interrupt() {
  for (const int signal : kSignals) {
    ::signal(signal, SIG_DFL);
  }
  for (const int end : pipeEnds) {
    ::close(end);
  }
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
