#include "diagnostics/Log.h"

#include <plog/Logger.h>

#include <string>

namespace norv::shared::battery::diagnostics {

namespace {

bool LoggerWants(Severity severity) {
  const auto* logger = plog::get<PLOG_DEFAULT_INSTANCE_ID>();
  return logger != nullptr && logger->checkSeverity(static_cast<plog::Severity>(severity));
}

void WriteToLogger(Severity severity, LogSite site, const std::string& text) {
  plog::Record record(static_cast<plog::Severity>(severity), site.operation, static_cast<std::size_t>(site.line), "",
                      nullptr, PLOG_DEFAULT_INSTANCE_ID);
  record << text;
  plog::get<PLOG_DEFAULT_INSTANCE_ID>()->write(record);
}

// The listener comes first: the host's appender may throw.
template <typename MakeText>
void Write(Severity severity, LogSite site, MakeText makeText) noexcept {
  try {
    const bool toLogger = LoggerWants(severity);
    LogListener* const listener = LogListener::Current();
    const bool toListener = listener != nullptr && listener->Wants(severity);
    if (toLogger || toListener) {
      const std::string text = makeText();
      if (toListener) {
        listener->Write(severity, site, text);
      }
      if (toLogger) {
        WriteToLogger(severity, site, text);
      }
    }
  } catch (...) {  // NOLINT(bugprone-empty-catch): a line that cannot be written is dropped
  }
}

}  // namespace

LogListener::~LogListener() = default;

LogListener*& LogListener::Current() {
  // Plain data: nothing to construct or destroy when a thread or the library comes or goes.
  thread_local LogListener* current = nullptr;
  return current;
}

void Log(Severity severity, LogSite site, std::initializer_list<std::string_view> texts) noexcept {
  Write(severity, site, [texts] {
    std::string line;
    for (const std::string_view text : texts) {
      line += text;
    }
    return line;
  });
}

void LogError(const error::Error& error, LogSite site) noexcept {
  Write(Severity::Error, site, [&error] {
    std::string text(error::Error::ToString(error, nullptr), '-');
    error::Error::ToString(error, text.data());
    return text;
  });
}

}  // namespace norv::shared::battery::diagnostics
