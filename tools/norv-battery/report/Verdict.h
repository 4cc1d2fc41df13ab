#pragma once

#include <optional>
#include <string>

namespace norv::tool {

// What a result code of the battery test says, in plain words.
struct Verdict {
  const char* verdictClass;  // "OK", "CALIBRATE", "WEAK", "FAIL", "NO_BATTERY", "VERY_WEAK" or "UNKNOWN"
  const char* meaning;       // of the class
  const char* qualifier;     // what the code adds to its class; empty when it adds nothing
};

// Nothing when the code belongs to no class: the test came to no verdict.
std::optional<Verdict> ExplainResult(std::optional<int> code);

// True when the code's class is FAIL.
bool IsFailure(std::optional<int> code);

}  // namespace norv::tool
