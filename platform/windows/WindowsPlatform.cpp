#include <windows.h>

#include <ctime>
#include <memory>
#include <optional>
#include <string>

#include "../SystemPlatform.h"
#include "../system-battery/SystemBattery.h"
#include "BatteryDevices.h"
#include "InvalidParameter.h"
#include "NarrowPath.h"
#include "OwnModule.h"
#include "RunProgram.h"
#include "VersionResource.h"
#include "WmiConnection.h"

namespace norv::platform {

namespace {

// A copy of the process's own variable: the C runtimes of host and library may each hold theirs, taken at different
// times. A value that grows between being measured and being read is measured anew.
std::wstring EnvironmentValue(const wchar_t* name) {
  std::wstring value;
  DWORD needed = GetEnvironmentVariableW(name, nullptr, 0);
  while (needed > value.size()) {
    value.resize(needed);
    needed = GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size()));
  }
  value.resize(needed);
  return value;
}

class WindowsPlatform : public Platform {
 public:
  // The maker's command channel is a library of its own, which a build for the maker's machines puts in the place of
  // norv-private-bios-wmi. Without it the system's own driver is asked.
  std::int32_t SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                               const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                               std::uint32_t* returnCode) override {
    return AnswerBiosCommand(first, second, third, input, inputSize, output, returnCode, windows::ReadBatteryDevice);
  }

  long ConnectWmi(const std::wstring& namespacePath, std::unique_ptr<WmiConnection>& connection) override {
    return windows::ConnectWmi(namespacePath, windows::kWmiPatience, connection);
  }

  bool RunProgram(const char* path) override { return windows::RunProgram(path); }

  bool ReadProductVersion(const char* path, ProductVersion& version) override {
    const auto found = windows::ReadProductVersion(path);
    version = found.value_or(version);
    return found.has_value();
  }

  std::uint32_t LibraryPath(char* buffer, std::uint32_t size) override { return windows::OwnPath(buffer, size); }

  std::wstring ModuleName() override { return windows::OwnName(); }

  std::optional<std::string> ProgramDataFolder() override {
    const std::wstring folder = EnvironmentValue(L"ProgramData");
    return folder.empty() ? std::nullopt : windows::NarrowPath(folder);
  }

  std::uint32_t FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) override {
    constexpr DWORD kLanguage = MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT);
    static_assert(kLanguage == 0x400);
    return FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, kLanguage, buffer,
                          size, nullptr);
  }

  std::uint32_t LastSystemCode() override { return GetLastError(); }

  void ReportInvalidParameter() override { windows::RaiseInvalidParameter(); }

  std::time_t Now() override { return std::time(nullptr); }

  std::time_t LocalTimeValue(const std::tm& calendarTime) override {
    std::tm normalised = calendarTime;
    return std::mktime(&normalised);
  }

  SlotDescription DescribeSlot(std::uint32_t slot) override {
    return DescribeBattery(windows::ReadBatteryDevice(slot));
  }
};

}  // namespace

Platform& SystemPlatform() {
  return OnlyOne<WindowsPlatform>();
}

}  // namespace norv::platform
