#include "BatteryFolder.h"

namespace norv::tool {

bool HasBatteryFolders() {
  return false;
}

std::string BatteryFolderDefect(const std::string& /*folder*/) {
  return {};
}

std::shared_ptr<void> PlaceBatteryFolder(const std::string& /*folder*/) {
  return nullptr;
}

}  // namespace norv::tool
