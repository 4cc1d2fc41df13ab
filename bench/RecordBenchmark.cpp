// One record: made from a block, and every accessor read once.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "battery/NorvBatteryInfo.h"
#include "decode/OfflinePlatform.h"
#include "plain/PlainRecord.h"
#include "support/Blocks.h"
#include "support/Fields.h"

namespace norv::bench {

namespace {

constexpr std::size_t kBlockCount = 1024;

// Different ones, so that no branch predictor learns the one block by heart.
const std::vector<Block>& LikelyBlocks() {
  static const std::vector<Block> blocks = [] {
    BlockGenerator generator(1);
    std::vector<Block> made;
    for (std::size_t number = 0; number < kBlockCount; ++number) {
      made.push_back(generator.Likely());
    }
    return made;
  }();
  return blocks;
}

void RecordOfTheLibrary(benchmark::State& state) {
  tool::OfflinePlatform platform(platform::Platform::Current(), std::nullopt);
  const platform::ScopedPlatform scope(platform);
  std::size_t number = 0;
  for (auto _ : state) {
    const auto battery =
        std::make_unique<shared::battery::NorvBatteryInfo>(LikelyBlocks()[number++ % kBlockCount].data());
    ReadEveryField(*battery, [](auto value) { benchmark::DoNotOptimize(value); });
  }
  state.SetItemsProcessed(state.iterations());
}

using Decode = plain::PlainRecord (*)(const unsigned char*, std::time_t);

void PlainRecordOf(benchmark::State& state, Decode decode) {
  const std::time_t now = std::time(nullptr);
  std::size_t number = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(decode(LikelyBlocks()[number++ % kBlockCount].data(), now));
  }
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK(RecordOfTheLibrary)->Name("record/library");
BENCHMARK_CAPTURE(PlainRecordOf, once, plain::DecodeCompilingOnce)->Name("record/plain_compiling_once");
BENCHMARK_CAPTURE(PlainRecordOf, each, plain::DecodeCompilingEachTime)->Name("record/plain_compiling_each_time");

}  // namespace

}  // namespace norv::bench
