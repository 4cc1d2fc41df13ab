// A host's own static objects may use the library until the very end of the process: norv-battery-after-main
// The library is used in main() first, so that what it keeps for itself is younger than the host's object and is
// destroyed before it.
#include <plog/Severity.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "CountingAppender.h"
#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvSharedInitializeLogger.h"
#include "norv/platform/Platform.h"
#include "norv/shared/norvbios/PrivateBiosWmi.h"

namespace {

using namespace norv;
using test::CountingAppender;

// Both slots hold a battery.
class Channel : public shared::norvbios::PrivateBiosWmi {
 public:
  std::int32_t ExecuteCommand(std::uint32_t /*first*/, std::uint32_t /*second*/, std::uint32_t /*third*/,
                              const unsigned char* /*input*/, std::uint32_t /*inputSize*/, unsigned char* output,
                              std::uint32_t* returnCode) override {
    std::memset(output, '1', 128);
    *returnCode = 0;
    return 0;
  }
};

// The running system, without WMI, that hears what the library asks it.
class Listening : public platform::PlatformWrapper {
 public:
  Listening() : PlatformWrapper(platform::Platform::Current()) {}

  long ConnectWmi(const std::wstring& namespacePath,
                  std::unique_ptr<platform::WmiConnection>& /*connection*/) override {
    askedForRates_ += namespacePath == L"\\\\.\\root\\wmi" ? 1 : 0;
    return -1;
  }

  int AskedForRates() const { return askedForRates_; }

 private:
  int askedForRates_ = 0;
};

bool Use() {
  Listening system;
  const platform::ScopedPlatform scope(system);
  shared::norvbios::PrivateBiosWmi* const channel = new Channel;
  shared::battery::NorvBatteries batteries(true, true, channel, nullptr);
  auto* const battery = batteries.Query(1);
  if (battery == nullptr) {
    return false;
  }
  battery->GetAge();
  return std::strcmp(battery->GetManufacturer(), "111111111111111111") == 0 && !battery->IsValid() &&
         system.AskedForRates() == 2;
}

// Ends the process with what it finds: a static object has no other way to tell.
struct UsesTheLibraryLast {
  UsesTheLibraryLast() = default;
  UsesTheLibraryLast(const UsesTheLibraryLast&) = delete;
  UsesTheLibraryLast& operator=(const UsesTheLibraryLast&) = delete;
  ~UsesTheLibraryLast() {
    norvSharedInitializeLogger(plog::verbose, &appender);
    const bool isGood = Use();
    std::fprintf(stderr, "after main: %s\n", isGood ? "good" : "the library does not answer as it did in main");
    std::fflush(stderr);
    std::_Exit(isGood ? 0 : 1);
  }

  CountingAppender appender;
};

UsesTheLibraryLast last;

}  // namespace

int main() {
  norvSharedInitializeLogger(plog::verbose, &last.appender);
  if (!Use() || last.appender.Count() == 0) {
    std::fprintf(stderr, "after main: the library does not answer in main\n");
    std::_Exit(1);
  }
  return 2;  // the status that stays when the object does not come to its end
}
