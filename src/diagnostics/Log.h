// The one way the library logs.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "norv/shared/error/Error.h"

namespace norv::shared::battery::diagnostics {

// plog's numbers, of those the library uses.
enum class Severity : int { Error = 2, Info = 4, Verbose = 6 };

// Where a log line comes from.
struct LogSite {
  const char* operation;  // its qualified name
  int line;
};

// Takes lines beside the logger that the host gave for the whole process: Listening<LogListener> puts it in place.
class LogListener {
 public:
  LogListener() = default;
  LogListener(const LogListener&) = delete;
  LogListener& operator=(const LogListener&) = delete;
  virtual ~LogListener();

  virtual bool Wants(Severity severity) const = 0;
  virtual void Write(Severity severity, LogSite site, const std::string& text) = 0;

  static LogListener*& Current();
};

// Writes one line, the texts joined. Does nothing without a logger or listener that lets the severity through. A line
// that cannot be written, for want of memory or because the host's appender throws, is dropped: logging never fails an
// operation.
void Log(Severity severity, LogSite site, std::initializer_list<std::string_view> texts) noexcept;

// Writes the text form of `error` at severity error.
void LogError(const error::Error& error, LogSite site) noexcept;

}  // namespace norv::shared::battery::diagnostics
