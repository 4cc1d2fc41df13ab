#include "settings/PlatformExclusion.h"

#include <string>

#include "diagnostics/Failures.h"
#include "diagnostics/Guard.h"
#include "norv/shared/wmi/WMIClient.h"

namespace norv::shared::battery {

namespace {

constexpr const char* kBoard = "9XQ4";
constexpr char kBiosFamily = 'F';
constexpr int kFirstGoodVersion = 17;

bool ReadFirst(wmi::WMIClient& client, const wchar_t* query, const wchar_t* property, std::string& value) {
  return client.Query(query) == 0 && client.GetNext() && client.GetValue(property, value) == 0;
}

// A BIOS name such as "F.17". Throws when it has no version there.
int BiosVersion(const std::string& name) {
  return std::stoi(name.substr(2, 2));
}

}  // namespace

bool IsPlatformExcluded() noexcept {
  bool excluded = false;  // what is known so far is the answer where anything throws
  diagnostics::Guarded(
      [&excluded] {
        wmi::WMIClient client(L"\\\\.\\root\\cimv2");
        std::string product;
        if (!ReadFirst(client, L"SELECT * FROM Win32_BaseBoard", L"Product", product) || product != kBoard) {
          return;
        }
        excluded = true;
        std::string name;
        if (ReadFirst(client, L"SELECT * FROM Win32_BIOS", L"Name", name) && name.starts_with(kBiosFamily)) {
          excluded = BiosVersion(name) < kFirstGoodVersion;
        }
      },
      diagnostics::Absorb);
  return excluded;
}

}  // namespace norv::shared::battery
