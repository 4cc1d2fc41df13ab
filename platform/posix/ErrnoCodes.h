// Windows' numbers for what can go wrong on a POSIX system.
#pragma once

#include <cstdint>

namespace norv::platform::posix {

// The system code that Windows has for an errno value.
std::uint32_t SystemCode(int errorNumber);

}  // namespace norv::platform::posix
