#include "PowerSupply.h"

#include "norv/platform/PowerSupplyPlatform.h"
#include "output/EscapeText.h"

namespace norv::tool {

namespace {

struct Place {
  explicit Place(const std::string& path) : platform(platform::Platform::Current(), path), scope(platform) {}

  platform::PowerSupplyPlatform platform;
  platform::ScopedPlatform scope;
};

}  // namespace

bool HasPowerSupplies() {
  return true;
}

std::string PowerSupplyDefect(const std::string& path) {
  const auto defect = platform::PowerSupplyPlatform::Defect(path);
  return defect ? Quote(path) + ": " + *defect : "";
}

std::shared_ptr<void> PlacePowerSupply(const std::string& path) {
  return std::make_shared<Place>(path);
}

}  // namespace norv::tool
