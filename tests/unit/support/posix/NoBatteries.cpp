// The notebook that these tests are developed on has batteries of its own. For the tests the running system has none.
#include <gtest/gtest.h>

#include <memory>

#include "norv/platform/PowerSupplyPlatform.h"

namespace norv::test {
namespace {

class NoBatteries : public testing::Environment {
 public:
  void SetUp() override {
    system_ = std::make_unique<platform::PowerSupplyPlatform>(platform::Platform::Current(), "/nowhere/at/all");
    scope_ = std::make_unique<platform::ScopedPlatform>(*system_);
  }

  void TearDown() override {
    scope_.reset();
    system_.reset();
  }

 private:
  std::unique_ptr<platform::PowerSupplyPlatform> system_;
  std::unique_ptr<platform::ScopedPlatform> scope_;
};

// GoogleTest owns it.
[[maybe_unused]] testing::Environment* const environment = testing::AddGlobalTestEnvironment(new NoBatteries);

}  // namespace
}  // namespace norv::test
