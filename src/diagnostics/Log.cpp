#include "diagnostics/Log.h"

#include <plog/Logger.h>

#include <string>

namespace norv::shared::battery::diagnostics {

namespace {

bool IsLogged(Severity severity) {
  const auto* logger = plog::get<PLOG_DEFAULT_INSTANCE_ID>();
  return logger != nullptr && logger->checkSeverity(static_cast<plog::Severity>(severity));
}

void Write(Severity severity, LogSite site, const std::string& text) {
  plog::Record record(static_cast<plog::Severity>(severity), site.operation, static_cast<std::size_t>(site.line), "",
                      nullptr, PLOG_DEFAULT_INSTANCE_ID);
  record << text;
  plog::get<PLOG_DEFAULT_INSTANCE_ID>()->write(record);
}

}  // namespace

void Log(Severity severity, LogSite site, std::initializer_list<std::string_view> texts) noexcept {
  try {
    if (IsLogged(severity)) {
      std::string line;
      for (const std::string_view text : texts) {
        line += text;
      }
      Write(severity, site, line);
    }
  } catch (...) {  // NOLINT(bugprone-empty-catch): a line that cannot be written is dropped
  }
}

void LogError(const error::Error& error, LogSite site) noexcept {
  try {
    if (IsLogged(Severity::Error)) {
      std::string text(error::Error::ToString(error, nullptr), '-');
      error::Error::ToString(error, text.data());
      Write(Severity::Error, site, text);
    }
  } catch (...) {  // NOLINT(bugprone-empty-catch): a line that cannot be written is dropped
  }
}

}  // namespace norv::shared::battery::diagnostics
