#include "PowerSupply.h"

namespace norv::tool {

bool HasPowerSupplies() {
  return false;
}

std::string PowerSupplyDefect(const std::string& /*path*/) {
  return {};
}

std::shared_ptr<void> PlacePowerSupply(const std::string& /*path*/) {
  return nullptr;
}

}  // namespace norv::tool
