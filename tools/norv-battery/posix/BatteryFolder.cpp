#include "BatteryFolder.h"

#include "norv/platform/PowerSupplyPlatform.h"

namespace norv::tool {

namespace {

struct Place {
  explicit Place(const std::string& folder) : platform(platform::Platform::Current(), folder), scope(platform) {}

  platform::PowerSupplyPlatform platform;
  platform::ScopedPlatform scope;
};

}  // namespace

bool HasBatteryFolders() {
  return true;
}

std::shared_ptr<void> PlaceBatteryFolder(const std::string& folder) {
  return std::make_shared<Place>(folder);
}

}  // namespace norv::tool
