#include "output/PartialFile.h"

#include <array>
#include <cstdio>
#include <random>

namespace norv::tool {

std::filesystem::path MakePartialName() {
  std::random_device random;
  std::array<char, 64> name{};
  std::snprintf(name.data(), name.size(), "norv-battery-%08x%08x.part", random(), random());
  return name.data();
}

}  // namespace norv::tool
