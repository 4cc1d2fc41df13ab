// The log callback of a C host.
#pragma once

#include <string>

#include "c-interface/Interface.h"
#include "diagnostics/Log.h"

namespace norv::shared::battery::c_interface {

class HostLog : public diagnostics::LogListener {
 public:
  explicit HostLog(const norv_battery_options& options);
  ~HostLog() override;

  bool Wants(diagnostics::Severity severity) const override;
  void Write(diagnostics::Severity severity, diagnostics::LogSite site, const std::string& text) override;

 private:
  norv_battery_log callback_;
  void* context_;
  int level_;
};

}  // namespace norv::shared::battery::c_interface
