// Texts on their way to a C host.
#pragma once

#include <cstddef>
#include <string_view>

#include "c-interface/Interface.h"

namespace norv::shared::battery::c_interface {

// Writes `text` and a NUL to the host's buffer, as the C header promises it.
norv_battery_status CopyText(std::string_view text, char* buffer, std::size_t bufferSize, std::size_t* needed);

}  // namespace norv::shared::battery::c_interface
