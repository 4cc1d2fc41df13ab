#include "Terminal.h"

#include <unistd.h>

#include <csignal>

namespace norv::tool {

bool StandardErrorIsTerminal() {
  return ::isatty(STDERR_FILENO) == 1;
}

void KeepBrokenPipesSilent() {
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace norv::tool
