// Makes collections without end in one process and watches its memory: norv-battery-flat-memory COUNT
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Process.h"
#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "norv/shared/norvbios/PrivateBiosWmi.h"

namespace {

using norv::shared::battery::NorvBatteries;
using norv::test::ResidentSize;

// Answers at once: two batteries, every third time the second slot is empty and every seventh the first one fails.
class Channel : public norv::shared::norvbios::PrivateBiosWmi {
 public:
  explicit Channel(int number) : number_(number) {}

  std::int32_t ExecuteCommand(std::uint32_t /*first*/, std::uint32_t /*second*/, std::uint32_t /*third*/,
                              const unsigned char* input, std::uint32_t /*inputSize*/, unsigned char* output,
                              std::uint32_t* returnCode) override {
    if (input[0] == 0 && number_ % 7 == 0) {
      return -1;
    }
    *returnCode = input[0] == 1 && number_ % 3 == 0 ? 6 : 0;
    std::memset(output, '0' + number_ % 10, 128);
    return 0;
  }

 private:
  int number_;
};

bool Collect(int number) {
  NorvBatteries batteries(true, true, new Channel(number), nullptr);
  auto* const first = batteries.Query(0);
  if (first != nullptr) {
    first->IsValid();
    first->GetAge();
  }
  return (first == nullptr) == (number % 7 == 0) && (batteries.Query(1) == nullptr) == (number % 3 == 0);
}

constexpr int kWarmUp = 1000;
constexpr std::size_t kMayGrow = std::size_t{256} * 1024;

int Run(int count) {
  std::size_t first = 0;
  for (int number = 1; number <= count; ++number) {
    if (!Collect(number)) {
      std::fprintf(stderr, "flat-memory: collection %d has not the batteries that its channel answered\n", number);
      return 1;
    }
    if (number == kWarmUp) {
      first = ResidentSize();
    }
  }
  const std::size_t last = ResidentSize();
  std::printf("%d collections; resident size after %d: %zu kB, at the end: %zu kB\n", count, kWarmUp, first / 1024,
              last / 1024);
  return first != 0 && last <= first + kMayGrow ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc == 2 ? std::atoi(argv[1]) : 0;
  if (count <= kWarmUp) {
    std::fprintf(stderr, "usage: norv-battery-flat-memory COUNT, more than %d\n", kWarmUp);
    return 2;
  }
  return Run(count);
}
