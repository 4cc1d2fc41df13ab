#include "unit/support/PlatformMakers.h"

namespace norv::test {

// Wine has no battery devices.
std::vector<Maker> SystemMakersWithABattery() {
  return {};
}

}  // namespace norv::test
