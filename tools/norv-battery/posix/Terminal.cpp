#include "output/Terminal.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string_view>

namespace norv::tool {

bool StandardErrorIsTerminal() {
  return ::isatty(STDERR_FILENO) == 1;
}

bool StandardOutputIsTerminal() {
  return ::isatty(STDOUT_FILENO) == 1;
}

// A terminal that is only a roll of paper says so.
bool StandardOutputTakesSequences() {
  const char* const kind = std::getenv("TERM");
  return kind != nullptr && std::string_view(kind) != "dumb";
}

void KeepBrokenPipesSilent() {
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace norv::tool
