// The benchmarks. Before the first one the decoders that are compared must have given the same answers.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <vector>

#include "decode/OfflinePlatform.h"
#include "support/Blocks.h"
#include "support/Comparison.h"

namespace norv::bench {

namespace {

constexpr int kGeneratedBlocks = 200;

std::vector<Block> Fixtures() {
  std::vector<Block> blocks = SampleBlocks();
  BlockGenerator generator(3);
  for (int number = 0; number < kGeneratedBlocks; ++number) {
    blocks.push_back(generator.Likely());
    blocks.push_back(generator.Odd());
  }
  return blocks;
}

bool AllDecodersAgree() {
  tool::OfflinePlatform platform(platform::Platform::Current(), std::nullopt);
  const platform::ScopedPlatform scope(platform);
  const std::time_t now = platform.Now();
  for (const Block& block : Fixtures()) {
    const plain::PlainRecord library = ReadLibraryRecord(block.data());
    for (const auto decode : {plain::DecodeCompilingOnce, plain::DecodeCompilingEachTime}) {
      if (const auto difference = Difference(block, library, decode(block.data(), now))) {
        std::fprintf(stderr, "The decoders do not agree:\n%s\n", difference->c_str());
        return false;
      }
    }
  }
  return true;
}

}  // namespace

}  // namespace norv::bench

int main(int argc, char** argv) {
  if (!norv::bench::AllDecodersAgree()) {
    return 1;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 2;
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
