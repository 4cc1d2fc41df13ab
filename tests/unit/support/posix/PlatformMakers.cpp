#include "unit/support/PlatformMakers.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "norv/platform/PowerSupplyPlatform.h"

namespace norv::test {

namespace {

namespace fs = std::filesystem;

class PowerSupplyMachine {
 public:
  PowerSupplyMachine() {
    fs::create_directory(folder_ / "BAT0");
    for (const auto& [name, value] : std::map<std::string, std::string>{
             {"type", "Battery"}, {"status", "Discharging"}, {"cycle_count", "412"}, {"capacity", "70"}}) {
      std::ofstream(folder_ / "BAT0" / name) << value << '\n';
    }
  }
  PowerSupplyMachine(const PowerSupplyMachine&) = delete;
  PowerSupplyMachine& operator=(const PowerSupplyMachine&) = delete;
  ~PowerSupplyMachine() { fs::remove_all(folder_); }

  platform::Platform& AsPlatform() { return platform_; }

 private:
  static fs::path NewFolder() {
    std::string pattern = (fs::temp_directory_path() / "norv-battery-XXXXXX").string();
    return ::mkdtemp(pattern.data());
  }

  fs::path folder_ = NewFolder();
  platform::PowerSupplyPlatform platform_{platform::Platform::Current(), folder_.string()};
};

Subject PowerSupply() {
  const auto machine = std::make_shared<PowerSupplyMachine>();
  return {machine, &machine->AsPlatform()};
}

}  // namespace

std::vector<Maker> SystemMakersWithABattery() {
  return {{"PowerSupply", PowerSupply}};
}

}  // namespace norv::test
