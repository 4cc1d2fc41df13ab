// The charge and discharge rates that the operating system knows.
#pragma once

namespace norv::shared::battery::record {

struct Rates {
  unsigned int charge = 0;
  unsigned int discharge = 0;
};

// Asks WMI. 0 where it gave none; a failure other than the lack of memory is not reported.
Rates ReadOperatingSystemRates();

// While one lives, this thread's records are made without asking: they are of blocks that need not be this machine's.
class WithoutOperatingSystemRates {
 public:
  WithoutOperatingSystemRates();
  WithoutOperatingSystemRates(const WithoutOperatingSystemRates&) = delete;
  WithoutOperatingSystemRates& operator=(const WithoutOperatingSystemRates&) = delete;
  ~WithoutOperatingSystemRates();
};

}  // namespace norv::shared::battery::record
