// Batteries out of a folder, on systems whose kernel shows its batteries as files.
#pragma once

#include <memory>
#include <string>

namespace norv::tool {

bool HasBatteryFolders();

// Why `folder`, which is there, is no folder of batteries; empty where it may be one. An empty one is that of a machine
// without a battery.
std::string BatteryFolderDefect(const std::string& folder);

// For as long as the result lives, the library meets the batteries of `folder` in the place of the running machine's.
// Only where there are such folders.
std::shared_ptr<void> PlaceBatteryFolder(const std::string& folder);

}  // namespace norv::tool
