// What a platform remarks goes to the log.
#pragma once

#include <string>

#include "Listening.h"
#include "Remarks.h"
#include "diagnostics/Operation.h"

namespace norv::shared::battery::diagnostics {

// How a block deviates from what the driver told, in words.
std::string InWords(const platform::Deviation& deviation);

// Hears what platforms remark on this thread for as long as it lives, and logs it as lines of an operation.
class LoggedRemarks : public platform::RemarkListener {
 public:
  explicit LoggedRemarks(const Operation& operation) : operation_(operation), listening_(this) {}

  void Hear(const platform::Remark& remark) override;

 private:
  const Operation& operation_;
  platform::Listening<RemarkListener> listening_;
};

}  // namespace norv::shared::battery::diagnostics
