// Capacities in percent.
#pragma once

namespace norv::shared::battery::record {

// `part` in percent of `whole`, in single precision, cut to three decimals. -2147483.75 when `whole` is 0 or the figure
// is too large to be cut.
float TruncatedPercentage(int part, int whole);

}  // namespace norv::shared::battery::record
