#include "posix/Signals.h"

namespace norv::tool {

void Handle(int signal, void (*handler)(int), int flags) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  ::sigaction(signal, &action, nullptr);
}

void HandleUnlessIgnored(int signal, void (*handler)(int), int flags) {
  struct sigaction former = {};
  if (::sigaction(signal, nullptr, &former) == 0 && former.sa_handler != SIG_IGN) {
    Handle(signal, handler, flags);
  }
}

}  // namespace norv::tool
