// Any 128 bytes as a battery-information block, every answer compared with the plain decoder's, and as a cell swell
// protection block.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "battery/NorvBatteryInfo.h"
#include "decode/OfflinePlatform.h"
#include "fuzz/Check.h"
#include "support/Comparison.h"

namespace {

using norv::test::Require;
using norv::tool::OfflinePlatform;

// A constant moment: an input means the same whenever it is run.
OfflinePlatform& StillClock() {
  static OfflinePlatform platform(norv::platform::Platform::Current(), norv::tool::Day{2024, 6, 1});
  return platform;
}

void CompareWithPlainDecoder(const norv::bench::Block& block) {
  const auto difference = norv::bench::Difference(block, norv::bench::ReadLibraryRecord(block.data()),
                                                  norv::plain::DecodeCompilingOnce(block.data(), StillClock().Now()));
  if (difference) {
    std::fprintf(stderr, "%s\n", difference->c_str());
  }
  Require(!difference, "an answer of the record");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  norv::bench::Block block{};
  std::copy_n(data, std::min(size, block.size()), block.begin());
  const norv::platform::ScopedPlatform scope(StillClock());
  CompareWithPlainDecoder(block);

  const norv::shared::battery::NorvBatteryCellSwellProtectionInfo cellSwell(block.data());
  Require(cellSwell.GetTimeCharge() >= 0 && cellSwell.GetCSPBTemp2Time() <= 0xFFFF, "a cell swell protection counter");
  return 0;
}
