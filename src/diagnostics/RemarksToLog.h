// What a platform remarks goes to the log.
#pragma once

#include <string_view>

#include "Remarks.h"
#include "diagnostics/Log.h"

namespace norv::shared::battery::diagnostics {

// Logs what it hears as lines of `operation`, a constant text.
class RemarksToLog : public platform::RemarkListener {
 public:
  explicit RemarksToLog(const char* operation) : operation_(operation) {}

  void Hear(platform::RemarkKind kind, std::string_view remark) override {
    Log(kind == platform::RemarkKind::Failure ? Severity::Error : Severity::Info, operation_, {remark});
  }

 private:
  const char* operation_;
};

}  // namespace norv::shared::battery::diagnostics
