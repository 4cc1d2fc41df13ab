// Platforms for the tests that run against each of them.
#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <vector>

#include "norv/platform/Platform.h"

namespace norv::test {

// A platform and whatever it needs to live.
struct Subject {
  std::shared_ptr<void> owner;
  platform::Platform* platform;
};

struct Maker {
  const char* name;
  std::function<Subject()> make;
};

inline void PrintTo(const Maker& maker, std::ostream* stream) {
  *stream << maker.name;
}

// Those that only this system has, each with one battery: 412 cycles, discharging, at 70 percent by its driver's
// account.
std::vector<Maker> SystemMakersWithABattery();

}  // namespace norv::test
