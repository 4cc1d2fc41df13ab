// Compares the library's record with the plain one over generated blocks, value by value: norv-battery-compare COUNT
#include <algorithm>
#include <atomic>
#include <charconv>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "decode/OfflinePlatform.h"
#include "support/Blocks.h"
#include "support/Comparison.h"

namespace norv::bench {

namespace {

constexpr std::uint64_t kFirstSeed = 20240601;
constexpr int kEnoughDifferences = 5;

std::atomic<int> differences{0};

void Compare(const Block& block, std::time_t now) {
  const auto difference =
      Difference(block, ReadLibraryRecord(block.data()), plain::DecodeCompilingOnce(block.data(), now));
  if (difference && differences++ < kEnoughDifferences) {
    std::fprintf(stderr, "%s\n", difference->c_str());
  }
}

void CompareGenerated(std::uint64_t seed, std::uint64_t count, std::time_t now) {
  BlockGenerator generator(seed);
  for (std::uint64_t number = 0; number < count && differences < kEnoughDifferences; ++number) {
    Compare(number % 8 == 0 ? generator.Likely() : generator.Odd(), now);
  }
}

// A constant moment, so that every run compares the same.
constexpr tool::Day kToday{2024, 6, 1};

int Run(std::uint64_t count) {
  tool::OfflinePlatform platform(platform::Platform::Current(), kToday);
  const platform::ScopedPlatform scope(platform);
  const auto samples = SampleBlocks();
  for (const Block& block : samples) {
    Compare(block, platform.Now());
  }
  {
    const std::uint64_t threadCount = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::jthread> threads;
    for (std::uint64_t number = 0; number < threadCount; ++number) {
      const std::uint64_t share = count / threadCount + (number < count % threadCount ? 1 : 0);
      threads.emplace_back(CompareGenerated, kFirstSeed + number, share, platform.Now());
    }
  }
  std::printf("%zu blocks of sample machines and %" PRIu64 " generated ones compared, %d different\n", samples.size(),
              count, differences.load());
  return differences == 0 ? 0 : 1;
}

}  // namespace

}  // namespace norv::bench

int main(int argc, char** argv) {
  std::uint64_t count = 0;
  const char* const text = argc == 2 ? argv[1] : "";
  const auto [end, failure] = std::from_chars(text, text + std::strlen(text), count);
  if (failure != std::errc() || *end != '\0' || count == 0) {
    std::fprintf(stderr, "usage: norv-battery-compare COUNT, the number of blocks to generate\n");
    return 2;
  }
  return norv::bench::Run(count);
}
