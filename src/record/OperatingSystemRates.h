// The charge and discharge rates that the operating system knows.
#pragma once

namespace norv::shared::battery::record {

struct Rates {
  unsigned int charge = 0;
  unsigned int discharge = 0;
};

// Asks WMI. 0 where it gave none; a failure other than the lack of memory is not reported.
Rates ReadOperatingSystemRates();

}  // namespace norv::shared::battery::record
