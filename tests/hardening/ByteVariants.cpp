// Reads all single-byte variants of the sample machines' blocks, and generated blocks, through every accessor and
// compares the answers with the plain decoder's: norv-battery-byte-variants COUNT, the number of thousands to generate.
//
// Made for the sanitizers: the library is built with them. The plain decoder beside it is not, or the comparison would
// take an hour.
#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <thread>
#include <vector>

#include "decode/OfflinePlatform.h"
#include "support/Blocks.h"
#include "support/Comparison.h"

namespace norv::bench {

namespace {

constexpr std::uint64_t kSeed = 7128256;
constexpr int kEnoughDifferences = 5;
constexpr unsigned int kByteValues = 256;

std::atomic<int> differences{0};
std::atomic<std::uint64_t> comparisons{0};

void Compare(const Block& block, std::time_t now) {
  ++comparisons;
  const auto difference =
      Difference(block, ReadLibraryRecord(block.data()), plain::DecodeCompilingOnce(block.data(), now));
  if (difference && differences++ < kEnoughDifferences) {
    std::fprintf(stderr, "%s\n", difference->c_str());
  }
}

// The byte at `offset` with every value.
void CompareVariants(const std::vector<Block>& blocks, std::size_t offset, std::time_t now) {
  for (Block block : blocks) {
    for (unsigned int value = 0; value < kByteValues; ++value) {
      block[offset] = static_cast<unsigned char>(value);
      Compare(block, now);
    }
  }
}

// Blocks as batteries have them, nearly so, and noise.
void CompareGenerated(std::uint64_t seed, std::uint64_t count, std::time_t now) {
  BlockGenerator generator(seed);
  for (std::uint64_t number = 0; number < count; ++number) {
    Compare(number % 8 == 0 ? generator.Likely() : generator.Odd(), now);
  }
}

// Calls `work` with 0 to `count` - 1, each once, on all cores.
void ForEach(std::size_t count, const std::function<void(std::size_t)>& work) {
  std::atomic<std::size_t> next{0};
  std::vector<std::jthread> threads;
  for (unsigned int number = 0; number < std::max(1U, std::thread::hardware_concurrency()); ++number) {
    threads.emplace_back([&] {
      for (std::size_t index = next++; index < count && differences < kEnoughDifferences; index = next++) {
        work(index);
      }
    });
  }
}

// Many sample machines have the same battery.
std::vector<Block> DifferentBlocks() {
  auto blocks = SampleBlocks();
  std::sort(blocks.begin(), blocks.end());
  blocks.erase(std::unique(blocks.begin(), blocks.end()), blocks.end());
  return blocks;
}

// A constant moment, so that every run compares the same.
constexpr tool::Day kToday{2024, 6, 1};

int Run(std::uint64_t count) {
  tool::OfflinePlatform platform(platform::Platform::Current(), kToday);
  const platform::ScopedPlatform scope(platform);
  const std::time_t now = platform.Now();
  const auto samples = DifferentBlocks();
  ForEach(Block().size(), [&](std::size_t offset) { CompareVariants(samples, offset, now); });
  const std::uint64_t variants = comparisons;
  constexpr std::uint64_t kPortion = 1000;
  ForEach(count / kPortion, [&](std::size_t portion) { CompareGenerated(kSeed + portion, kPortion, now); });
  std::printf("%zu different blocks: %llu single-byte variants and %llu generated blocks compared, %d different\n",
              samples.size(), static_cast<unsigned long long>(variants),
              static_cast<unsigned long long>(comparisons - variants), differences.load());
  return differences == 0 && !samples.empty() ? 0 : 1;
}

}  // namespace

}  // namespace norv::bench

int main(int argc, char** argv) {
  std::uint64_t count = 0;
  const char* const text = argc == 2 ? argv[1] : "";
  const auto [end, failure] = std::from_chars(text, text + std::strlen(text), count);
  if (failure != std::errc() || *end != '\0' || count == 0) {
    std::fprintf(stderr, "usage: norv-battery-byte-variants COUNT, the number of thousands of blocks to generate\n");
    return 2;
  }
  return norv::bench::Run(count * 1000);
}
