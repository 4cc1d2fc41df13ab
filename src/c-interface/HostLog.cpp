#include "c-interface/HostLog.h"

#include "base/Utf8.h"

namespace norv::shared::battery::c_interface {

HostLog::HostLog(const norv_battery_options& options)
    : callback_(options.log), context_(options.logContext), level_(options.logLevel) {
}

HostLog::~HostLog() = default;

bool HostLog::Wants(diagnostics::Severity severity) const {
  return callback_ != nullptr && static_cast<int>(severity) <= level_;
}

void HostLog::Write(diagnostics::Severity severity, diagnostics::LogSite site, const std::string& text) {
  callback_(context_, static_cast<std::int32_t>(severity), site.operation, base::BytesToUtf8(text).c_str());
}

}  // namespace norv::shared::battery::c_interface
