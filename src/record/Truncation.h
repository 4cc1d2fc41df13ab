// Conversion of real numbers to int as the processor does it.
#pragma once

#include <limits>

namespace norv::shared::battery::record {

// Cuts the decimals off. What does not fit an int, or is no number, gives the processor's "integer indefinite" value,
// the most negative int; the language leaves that case undefined.
inline int TruncateToInt(double value) {
  constexpr double kBelowLowest = -2147483649.0;
  constexpr double kAboveHighest = 2147483648.0;
  return value > kBelowLowest && value < kAboveHighest ? static_cast<int>(value) : std::numeric_limits<int>::min();
}

}  // namespace norv::shared::battery::record
