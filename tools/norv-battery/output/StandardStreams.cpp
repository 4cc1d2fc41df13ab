#include "output/StandardStreams.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "output/EscapeText.h"
#include "output/Terminal.h"

namespace norv::tool {

namespace {

void Put(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
}

std::string PrintableLines(std::string_view text) {
  const std::size_t end = text.find('\n');
  return end == std::string_view::npos
             ? PrintableLine(text)
             : PrintableLine(text.substr(0, end)) + '\n' + PrintableLines(text.substr(end + 1));
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
  StandardError::Instance().WriteLine("norv-battery: " + PrintableLines(message));
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
  // Nobody reads, or a watch was told to end while it waited for its reader.
  if (code != EPIPE && code != EINTR) {
    Complain("standard output cannot be written to: " + std::generic_category().message(code));
  }
  return false;
}

}  // namespace norv::tool
