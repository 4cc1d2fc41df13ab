#include "norv/platform/Platform.h"

#include <atomic>
#include <cerrno>

#include "SystemPlatform.h"

namespace norv::platform {

namespace {

// Null means the running system. Atomic so that a reader on another thread never sees half a pointer.
std::atomic<Platform*> current{nullptr};

}  // namespace

WmiConnection::~WmiConnection() = default;

Platform::~Platform() = default;

void Platform::ReportInvalidParameter() {
  errno = EINVAL;
}

std::string Platform::BatterySource() {
  return DescribeSlot(0).source;
}

std::optional<std::uint32_t> Platform::DriverStateOfCharge(std::uint32_t slot) {
  return DescribeSlot(slot).stateOfCharge;
}

SlotDescription Platform::DescribeSlot(std::uint32_t /*slot*/) {
  return {};
}

Platform& Platform::Current() {
  Platform* platform = current.load(std::memory_order_acquire);
  return platform != nullptr ? *platform : SystemPlatform();
}

ScopedPlatform::ScopedPlatform(Platform& platform) : previous_(current.exchange(&platform)) {
}

ScopedPlatform::~ScopedPlatform() {
  current.store(previous_);
}

PlatformWrapper::PlatformWrapper(Platform& inner) : inner_(inner) {
}

PlatformWrapper::~PlatformWrapper() = default;

std::int32_t PlatformWrapper::SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                              const unsigned char* input, std::uint32_t inputSize,
                                              unsigned char* output, std::uint32_t* returnCode) {
  return inner_.SendBiosCommand(first, second, third, input, inputSize, output, returnCode);
}

long PlatformWrapper::ConnectWmi(const std::wstring& namespacePath, std::unique_ptr<WmiConnection>& connection) {
  return inner_.ConnectWmi(namespacePath, connection);
}

bool PlatformWrapper::RunProgram(const char* path) {
  return inner_.RunProgram(path);
}

bool PlatformWrapper::ReadProductVersion(const char* path, ProductVersion& version) {
  return inner_.ReadProductVersion(path, version);
}

std::uint32_t PlatformWrapper::LibraryPath(char* buffer, std::uint32_t size) {
  return inner_.LibraryPath(buffer, size);
}

std::wstring PlatformWrapper::ModuleName() {
  return inner_.ModuleName();
}

std::optional<std::string> PlatformWrapper::ProgramDataFolder() {
  return inner_.ProgramDataFolder();
}

std::uint32_t PlatformWrapper::FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) {
  return inner_.FormatSystemMessage(code, buffer, size);
}

std::uint32_t PlatformWrapper::LastSystemCode() {
  return inner_.LastSystemCode();
}

void PlatformWrapper::ReportInvalidParameter() {
  inner_.ReportInvalidParameter();
}

std::time_t PlatformWrapper::Now() {
  return inner_.Now();
}

std::time_t PlatformWrapper::LocalTimeValue(const std::tm& calendarTime) {
  return inner_.LocalTimeValue(calendarTime);
}

// These two answer by DescribeSlot() as a wrapper overrides it, and stand here for hosts that were linked with them.
std::string PlatformWrapper::BatterySource() {
  return Platform::BatterySource();
}

std::optional<std::uint32_t> PlatformWrapper::DriverStateOfCharge(std::uint32_t slot) {
  return Platform::DriverStateOfCharge(slot);
}

SlotDescription PlatformWrapper::DescribeSlot(std::uint32_t slot) {
  return inner_.DescribeSlot(slot);
}

}  // namespace norv::platform
