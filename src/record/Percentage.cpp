#include "record/Percentage.h"

#include "record/Truncation.h"

namespace norv::shared::battery::record {

float TruncatedPercentage(int part, int whole) {
  constexpr float kThreeDecimals = 1000.0F;
  const float quotient = static_cast<float>(part) / static_cast<float>(whole);
  const float scaled = quotient * 100.0F * kThreeDecimals;
  return static_cast<float>(TruncateToInt(static_cast<double>(scaled))) / kThreeDecimals;
}

}  // namespace norv::shared::battery::record
