#include "norv/platform/PowerSupplyPlatform.h"

#include <filesystem>
#include <system_error>

#include "PowerSupply.h"
#include "SupplyFolder.h"
#include "SupplyListing.h"

namespace norv::platform {

namespace {

namespace fs = std::filesystem;

bool IsFolder(const std::string& path) {
  std::error_code ignored;
  return fs::is_directory(path, ignored);
}

std::optional<SystemBattery> ReadFrom(const std::string& path, std::uint32_t slot) {
  return IsFolder(path) ? posix::ReadBattery(posix::SupplyFolder(path), slot)
                        : posix::ReadBattery(posix::SupplyListing::FromFile(path), slot);
}

std::optional<std::string> FolderDefect(const std::string& path) {
  std::error_code failure;
  const fs::directory_iterator first(path, failure);
  if (failure) {
    return "cannot be read: " + failure.message();
  }
  const bool isClass = first == fs::directory_iterator() || posix::HasSupply(posix::SupplyFolder(path));
  return isClass ? std::nullopt
                 : std::optional(
                       "no folder of the power supply class: "
                       "expected a folder with a file 'type' for each supply");
}

std::optional<std::string> ListingDefect(const std::string& path) {
  const auto listing = posix::SupplyListing::FromFile(path);
  const bool isEmpty = !listing.Defect() && !posix::HasSupply(listing);
  return isEmpty ? "no listing of the power supply class: expected a line such as BAT0/type:Battery for each supply"
                 : listing.Defect();
}

}  // namespace

PowerSupplyPlatform::PowerSupplyPlatform(Platform& inner, const std::string& path)
    : PlatformWrapper(inner), path_(path) {
}

PowerSupplyPlatform::~PowerSupplyPlatform() = default;

std::optional<std::string> PowerSupplyPlatform::Defect(const std::string& path) {
  return IsFolder(path) ? FolderDefect(path) : ListingDefect(path);
}

std::int32_t PowerSupplyPlatform::SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                                  const unsigned char* input, std::uint32_t inputSize,
                                                  unsigned char* output, std::uint32_t* returnCode) {
  return AnswerBiosCommand(first, second, third, input, inputSize, output, returnCode,
                           [this](std::uint32_t slot) { return ReadFrom(path_, slot); });
}

std::string PowerSupplyPlatform::BatterySource() {
  return PlatformWrapper::BatterySource();
}

std::optional<std::uint32_t> PowerSupplyPlatform::DriverStateOfCharge(std::uint32_t slot) {
  return PlatformWrapper::DriverStateOfCharge(slot);
}

SlotDescription PowerSupplyPlatform::DescribeSlot(std::uint32_t slot) {
  return DescribeBattery(ReadFrom(path_, slot));
}

}  // namespace norv::platform
