// How often a record asks for memory. This program's operator new counts.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>

#include "battery/NorvBatteryInfo.h"
#include "norv/platform/Platform.h"
#include "support/Blocks.h"
#include "support/Fields.h"

namespace {

int allocations = 0;

}  // namespace

void* operator new(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size != 0 ? size : 1)) {
    return memory;
  }
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace norv::bench {
namespace {

// A machine without WMI.
class OfflineMachine : public platform::PlatformWrapper {
 public:
  OfflineMachine() : PlatformWrapper(platform::Platform::Current()) {}
  long ConnectWmi(const std::wstring& /*path*/, std::unique_ptr<platform::WmiConnection>& /*connection*/) override {
    return -1;
  }
};

int AllocationsOf(const Block& block) {
  const int before = allocations;
  const auto battery = std::make_unique<shared::battery::NorvBatteryInfo>(block.data());
  ReadEveryField(*battery, [](auto /*value*/) {});
  return allocations - before;
}

TEST(Allocation, RecordAsksOnceBesidesItself) {
  OfflineMachine machine;
  const platform::ScopedPlatform scope(machine);
  BlockGenerator generator(1);
  AllocationsOf(generator.Likely());  // what is made once for all records is made by the first
  for (int number = 0; number < 100; ++number) {
    const Block block = generator.Likely();
    ASSERT_EQ(AllocationsOf(block), 2);
  }
}

}  // namespace
}  // namespace norv::bench
