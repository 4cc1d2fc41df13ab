#include "posix/Signals.h"

namespace norv::tool {

void HandleUnlessIgnored(int signal, void (*handler)(int), int flags) {
  struct sigaction action = {};
  if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) {
    return;
  }
  action = {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  ::sigaction(signal, &action, nullptr);
}

}  // namespace norv::tool
