#include "BatteryDevices.h"

#include <windows.h>
// devioctl.h and poclass.h need windows.h before them, and initguid.h, which makes the class identifier a constant of
// this file, has to stand before poclass.h.
#include <devioctl.h>
#include <initguid.h>
#include <poclass.h>
#include <setupapi.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "../system-battery/BatteryClass.h"
#include "base/Utf8.h"
#include "base/windows/Handle.h"

namespace norv::platform::windows {

namespace {

// The battery devices that are there now.
class DeviceList {
 public:
  DeviceList()
      : list_(SetupDiGetClassDevsW(&GUID_DEVICE_BATTERY, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE)) {}
  DeviceList(const DeviceList&) = delete;
  DeviceList& operator=(const DeviceList&) = delete;
  ~DeviceList() {
    if (list_ != INVALID_HANDLE_VALUE) {
      SetupDiDestroyDeviceInfoList(list_);
    }
  }

  // The path of the device; empty when it cannot be had. Nothing behind the last device.
  std::optional<std::wstring> Path(DWORD index) const {
    SP_DEVICE_INTERFACE_DATA device{};
    device.cbSize = sizeof(device);
    if (list_ == INVALID_HANDLE_VALUE ||
        SetupDiEnumDeviceInterfaces(list_, nullptr, &GUID_DEVICE_BATTERY, index, &device) == FALSE) {
      return std::nullopt;
    }
    DWORD size = 0;
    SetupDiGetDeviceInterfaceDetailW(list_, &device, nullptr, 0, &size, nullptr);
    if (size < sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W)) {
      return std::wstring();
    }
    // A structure with its text behind it, and aligned for it.
    std::vector<SP_DEVICE_INTERFACE_DETAIL_DATA_W> buffer(size / sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W) + 1);
    buffer.front().cbSize = sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W);
    if (SetupDiGetDeviceInterfaceDetailW(list_, &device, buffer.data(), size, nullptr, nullptr) == FALSE) {
      return std::wstring();
    }
    const auto* const bytes = reinterpret_cast<const std::byte*>(buffer.data());
    return reinterpret_cast<const wchar_t*>(bytes + offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_W, DevicePath));
  }

 private:
  HDEVINFO list_;
};

// An open battery device. Every battery that is put in gets a tag of its own, so that no question about one is answered
// with what is true of the next.
class BatteryDevice {
 public:
  explicit BatteryDevice(const std::wstring& path)
      : handle_(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {
    ULONG noWait = 0;
    Ask(IOCTL_BATTERY_QUERY_TAG, noWait, &tag_, sizeof(tag_));
  }
  bool HasBattery() const { return tag_ != BATTERY_TAG_INVALID; }

  template <typename Answer>
  std::optional<Answer> Information(BATTERY_QUERY_INFORMATION_LEVEL level) {
    Answer answer{};
    return AskInformation(level, &answer, sizeof(answer)) == sizeof(answer) ? std::optional(answer) : std::nullopt;
  }

  // UTF-8; empty when the driver has no such text.
  std::string Text(BATTERY_QUERY_INFORMATION_LEVEL level) {
    std::array<wchar_t, MAX_BATTERY_STRING_SIZE> text{};
    // Without the last character, so that there always is an end.
    AskInformation(level, text.data(), static_cast<DWORD>((text.size() - 1) * sizeof(wchar_t)));
    return base::WideToUtf8(text.data());
  }

  std::optional<BATTERY_STATUS> Status() {
    BATTERY_WAIT_STATUS question{};
    question.BatteryTag = tag_;
    BATTERY_STATUS answer{};
    return Ask(IOCTL_BATTERY_QUERY_STATUS, question, &answer, sizeof(answer)) == sizeof(answer) ? std::optional(answer)
                                                                                                : std::nullopt;
  }

 private:
  // The number of bytes of the answer; 0 when the driver refuses.
  template <typename Question>
  DWORD Ask(DWORD code, Question& question, void* answer, DWORD size) {
    DWORD length = 0;
    const BOOL answered =
        DeviceIoControl(handle_.Get(), code, &question, sizeof(question), answer, size, &length, nullptr);
    return answered != FALSE ? length : 0;
  }

  DWORD AskInformation(BATTERY_QUERY_INFORMATION_LEVEL level, void* answer, DWORD size) {
    BATTERY_QUERY_INFORMATION question{};
    question.BatteryTag = tag_;
    question.InformationLevel = level;
    return Ask(IOCTL_BATTERY_QUERY_INFORMATION, question, answer, size);
  }

  base::Handle handle_;
  ULONG tag_ = BATTERY_TAG_INVALID;
};

std::optional<BatteryClassAnswers> Ask(BatteryDevice& device) {
  const auto information = device.Information<BATTERY_INFORMATION>(BatteryInformation);
  if (!device.HasBattery() || !information) {
    return std::nullopt;
  }
  BatteryClassAnswers answers;
  const auto* const chemistry = reinterpret_cast<const char*>(information->Chemistry);
  answers.information = {information->Capabilities, information->DesignedCapacity, information->FullChargedCapacity,
                         information->CycleCount};
  answers.chemistry.assign(chemistry, sizeof(information->Chemistry));
  answers.temperature = device.Information<ULONG>(BatteryTemperature);
  if (const auto date = device.Information<BATTERY_MANUFACTURE_DATE>(BatteryManufactureDate)) {
    answers.manufactureDate = {date->Day, date->Month, date->Year};
  }
  answers.serialNumber = device.Text(BatterySerialNumber);
  answers.manufactureName = device.Text(BatteryManufactureName);
  answers.deviceName = device.Text(BatteryDeviceName);
  // Last: a battery that went meanwhile has no status any more, and its other answers are not worth anything then.
  const auto status = device.Status();
  if (!status) {
    return std::nullopt;
  }
  answers.status = {status->PowerState, status->Capacity, status->Voltage, status->Rate};
  return answers;
}

}  // namespace

std::optional<SystemBattery> ReadBatteryDevice(std::uint32_t slot) {
  const DeviceList devices;
  std::uint32_t found = 0;
  for (DWORD index = 0;; ++index) {
    const auto path = devices.Path(index);
    if (!path) {
      return std::nullopt;
    }
    BatteryDevice device(*path);
    const auto answers = Ask(device);
    auto battery = answers ? TranslateBatteryClass(*answers) : std::nullopt;
    if (battery && found++ == slot) {
      return battery;
    }
  }
}

}  // namespace norv::platform::windows
