// Conversion of real numbers to int as the processor does it.
#pragma once

#include <cmath>
#include <limits>

namespace norv::shared::battery::record {

// Cuts the decimals off. What does not fit an int, or is no number, gives the processor's "integer indefinite" value,
// the most negative int; the language leaves that case undefined.
inline int TruncateToInt(double value) {
  constexpr double kLowest = std::numeric_limits<int>::min();
  constexpr double kHighest = std::numeric_limits<int>::max();
  const double whole = std::trunc(value);
  return whole >= kLowest && whole <= kHighest ? static_cast<int>(whole) : std::numeric_limits<int>::min();
}

}  // namespace norv::shared::battery::record
