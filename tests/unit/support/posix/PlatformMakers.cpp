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

// One battery in a folder of the power supply class, and in a listing beside it.
constexpr const char* kFolder = "class";
constexpr const char* kListing = "listing.txt";

class PowerSupplyMachine {
 public:
  explicit PowerSupplyMachine(const char* source)
      : platform_(platform::Platform::Current(), (place_ / source).string()) {
    const fs::path battery = place_ / kFolder / "BAT0";
    fs::create_directories(battery);
    std::ofstream listing(place_ / kListing);
    for (const auto& [name, value] : std::map<std::string, std::string>{
             {"type", "Battery"}, {"status", "Discharging"}, {"cycle_count", "412"}, {"capacity", "70"}}) {
      std::ofstream(battery / name) << value << '\n';
      listing << "BAT0/" << name << ':' << value << '\n';
    }
  }
  PowerSupplyMachine(const PowerSupplyMachine&) = delete;
  PowerSupplyMachine& operator=(const PowerSupplyMachine&) = delete;
  ~PowerSupplyMachine() { fs::remove_all(place_); }

  platform::Platform& AsPlatform() { return platform_; }

 private:
  static fs::path NewPlace() {
    std::string pattern = (fs::temp_directory_path() / "norv-battery-XXXXXX").string();
    return ::mkdtemp(pattern.data());
  }

  fs::path place_ = NewPlace();
  platform::PowerSupplyPlatform platform_;
};

Maker PowerSupply(const char* name, const char* source) {
  return {name, [source] {
            const auto machine = std::make_shared<PowerSupplyMachine>(source);
            return Subject{machine, &machine->AsPlatform()};
          }};
}

}  // namespace

std::vector<Maker> SystemMakersWithABattery() {
  return {PowerSupply("PowerSupplyFolder", kFolder), PowerSupply("PowerSupplyListing", kListing)};
}

}  // namespace norv::test
