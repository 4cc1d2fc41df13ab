#include "BatteryFolder.h"

#include <filesystem>
#include <system_error>

#include "norv/platform/PowerSupplyPlatform.h"
#include "output/EscapeText.h"

namespace norv::tool {

namespace {

namespace fs = std::filesystem;

struct Place {
  explicit Place(const std::string& folder) : platform(platform::Platform::Current(), folder), scope(platform) {}

  platform::PowerSupplyPlatform platform;
  platform::ScopedPlatform scope;
};

}  // namespace

bool HasBatteryFolders() {
  return true;
}

std::string BatteryFolderDefect(const std::string& folder) {
  bool isEmpty = true;
  std::error_code failure;
  for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end; entry.increment(failure)) {
    isEmpty = false;
    std::error_code ignored;
    if (fs::exists(entry->path() / "type", ignored)) {
      return "";
    }
  }
  if (failure) {
    return Quote(folder) + " cannot be read: " + failure.message();
  }
  return isEmpty ? ""
                 : Quote(folder) +
                       " is no folder of the power supply class: expected a folder with a file 'type' for each supply";
}

std::shared_ptr<void> PlaceBatteryFolder(const std::string& folder) {
  return std::make_shared<Place>(folder);
}

}  // namespace norv::tool
