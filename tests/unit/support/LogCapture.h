// What the library logs while a test runs, and the parts of its errors.
#pragma once

#include <gtest/gtest.h>
#include <plog/Severity.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "norv/shared/error/Error.h"

namespace norv::test {

struct LogLine {
  plog::Severity severity;
  std::string function;
  std::string message;

  bool operator==(const LogLine& other) const = default;
};

std::ostream& operator<<(std::ostream& stream, const LogLine& line);

// Collects the library's log lines, of every severity, for as long as it lives. One at a time.
class LogCapture {
 public:
  LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;
  ~LogCapture();

  const std::vector<LogLine>& Lines() const { return lines_; }

  std::vector<std::string> Messages() const;
  std::vector<std::string> Messages(plog::Severity severity) const;
  std::size_t Count(const std::string& message) const;

  // Called for each line before it is kept; may throw, as a host's appender may.
  void (*onLine)() = nullptr;

 private:
  friend class Appender;
  std::vector<LogLine> lines_;
};

std::string TextForm(const shared::error::Error& error);

// Holds a failure with exactly these parts.
::testing::AssertionResult IsError(const shared::error::Error& error, shared::error::ErrorCategory category,
                                   std::int64_t code, const std::string& message, const std::string& typeText,
                                   const std::string& functionText);

}  // namespace norv::test
