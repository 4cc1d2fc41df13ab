// The texts that the running system has for its codes, which no two systems word alike.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "norv/platform/Platform.h"

namespace norv::test {

// With its line break; empty for a code without a text.
inline std::string SystemText(std::uint32_t code) {
  std::array<char, 2018> text{};
  const std::uint32_t length = platform::Platform::Current().FormatSystemMessage(code, text.data(), 2018);
  return {text.data(), length};
}

}  // namespace norv::test
