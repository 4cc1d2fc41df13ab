// One collection of two batteries with cell swell protection data, over a channel that answers at once.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "decode/OfflinePlatform.h"
#include "support/Blocks.h"

namespace norv::bench {

namespace {

class PromptPlatform : public tool::OfflinePlatform {
 public:
  PromptPlatform() : OfflinePlatform(platform::Platform::Current(), std::nullopt), block_(BlockGenerator(1).Likely()) {}

  std::int32_t SendBiosCommand(std::uint32_t /*first*/, std::uint32_t /*second*/, std::uint32_t /*third*/,
                               const unsigned char* /*input*/, std::uint32_t /*inputSize*/, unsigned char* output,
                               std::uint32_t* returnCode) override {
    std::copy(block_.begin(), block_.end(), output);
    *returnCode = 0;
    return 0;
  }

 private:
  Block block_;
};

void CollectionOfTwo(benchmark::State& state) {
  PromptPlatform platform;
  const platform::ScopedPlatform scope(platform);
  for (auto _ : state) {
    shared::battery::NorvBatteries batteries(true, false, nullptr, nullptr);
    if (batteries.Query(1) == nullptr || batteries.Query(1)->GetCellSwellProtectionInfo() == nullptr) {
      state.SkipWithError("the second battery is missing");
      break;
    }
  }
}

BENCHMARK(CollectionOfTwo)->Name("collection/two_batteries")->Unit(benchmark::kMicrosecond);

}  // namespace

}  // namespace norv::bench
