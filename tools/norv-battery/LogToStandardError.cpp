#include "LogToStandardError.h"

#include <plog/Appenders/IAppender.h>
#include <plog/Record.h>
#include <plog/Severity.h>

#include <string>
#include <string_view>

#include "base/Time.h"
#include "battery/NorvSharedInitializeLogger.h"
#include "output/EscapeText.h"
#include "output/StandardStreams.h"

namespace norv::tool {

namespace {

// plog hands out wide messages on Windows and narrow ones elsewhere. A library's messages are ASCII but for texts of
// the system, of which a character that is no Latin-1 letter can only be shown as one that is missing.
[[maybe_unused]] std::string Narrow(std::string_view text) {
  return std::string(text);
}
std::string Narrow(std::wstring_view text) {
  std::string narrow;
  for (const wchar_t character : text) {
    narrow += static_cast<unsigned long>(character) <= 0xFF ? static_cast<char>(character) : '?';
  }
  return narrow;
}

std::string_view SeverityName(plog::Severity severity) {
  switch (severity) {
    case plog::fatal:
    case plog::error:
      return "error";
    case plog::warning:
      return "warning";
    case plog::info:
      return "info";
    default:
      return "verbose";
  }
}

class StandardErrorAppender : public plog::IAppender {
 public:
  void write(const plog::Record& record) override {
    std::string line = base::TimeText(record.getTime().time) + ' ';
    line += SeverityName(record.getSeverity());
    line += ": ";
    if (record.getObject() != nullptr) {
      line += EscapeBytes(Narrow(static_cast<const wchar_t*>(record.getObject()))) + ": ";
    }
    const std::string function = record.getFunc();
    const std::string message = Narrow(record.getMessage());
    if (message.find(function) == std::string::npos) {  // as most messages have it
      line += EscapeBytes(function) + ": ";
    }
    line += EscapeBytes(WithoutLineBreak(message));
    StandardError::Instance().WriteLine(line);
  }
};

}  // namespace

void LogToStandardError(unsigned int maxSeverity) {
  // The library may log until it is unloaded, so the appender is never destroyed.
  static auto* const appender = new StandardErrorAppender;
  norvSharedInitializeLogger(maxSeverity, appender);
}

}  // namespace norv::tool
