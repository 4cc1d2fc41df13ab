// Result codes of the battery test.
#pragma once

namespace norv::shared::battery::test {

inline constexpr int kNoVerdict = -1;

// The label of a result code, a constant text; "NOT_DEFINED" for a code without one.
const char* ResultLabel(int code);

}  // namespace norv::shared::battery::test
