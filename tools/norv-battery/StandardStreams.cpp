#include "StandardStreams.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "Terminal.h"

namespace norv::tool {

namespace {

void Put(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace

StandardError& StandardError::Instance() {
  static auto* const instance = new StandardError;
  return *instance;
}

void StandardError::WriteLine(std::string_view line) {
  const std::lock_guard lock(mutex_);
  Erase();
  Put(std::string(line) + '\n');
  std::fflush(stderr);
}

void StandardError::ShowPassingLine(std::string_view line) {
  const std::lock_guard lock(mutex_);
  Erase();
  Put(line);
  std::fflush(stderr);
  passingWidth_ = line.size();
}

void StandardError::ClearPassingLine() {
  const std::lock_guard lock(mutex_);
  Erase();
  std::fflush(stderr);
}

// Blanks and carriage returns only: every terminal understands them.
void StandardError::Erase() {
  if (passingWidth_ > 0) {
    Put('\r' + std::string(passingWidth_, ' ') + '\r');
    passingWidth_ = 0;
  }
}

void Complain(const std::string& message) {
  StandardError::Instance().WriteLine("norv-battery: " + message);
}

bool WriteToStandardOutput(std::string_view text) {
  // Only now, when nothing else is started any more: a child process would inherit it.
  KeepBrokenPipesSilent();
  errno = 0;
  // A view of nothing may have no address, which fwrite() must not be given.
  const bool isTaken = text.empty() || std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (isTaken && std::fflush(stdout) == 0) {
    return true;
  }
  const int code = errno;
  if (code != EPIPE) {
    Complain("standard output cannot be written to: " + std::generic_category().message(code));
  }
  return false;
}

}  // namespace norv::tool
