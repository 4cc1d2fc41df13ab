// The one way the library logs.
#pragma once

#include <initializer_list>
#include <string_view>

#include "norv/shared/error/Error.h"

namespace norv::shared::battery::diagnostics {

// plog's numbers, of those the library uses.
enum class Severity : int { Error = 2, Info = 4, Verbose = 6 };

// Where a log line comes from. Converts from the operation's qualified name and takes the line of the call by itself.
struct LogSite {
  // NOLINTNEXTLINE(google-explicit-constructor): a call names the operation only
  LogSite(const char* qualifiedName, int sourceLine = __builtin_LINE()) : operation(qualifiedName), line(sourceLine) {}

  const char* operation;
  int line;
};

// Writes one line, the texts joined. Does nothing without a logger that lets the severity through. A line that cannot
// be written, for want of memory or because the host's appender throws, is dropped: logging never fails an operation.
void Log(Severity severity, LogSite site, std::initializer_list<std::string_view> texts) noexcept;

// Writes the text form of `error` at severity error.
void LogError(const error::Error& error, LogSite site) noexcept;

}  // namespace norv::shared::battery::diagnostics
