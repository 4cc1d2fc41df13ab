// Texts on their way to a C host.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "c-interface/Interface.h"

namespace norv::shared::battery::c_interface {

// Bytes without a stated encoding as UTF-8: each stands as the character of its number, U+0000 to U+00FF.
std::string BytesToUtf8(std::string_view bytes);

// A text that should be UTF-8: each byte that belongs to no character is replaced by U+FFFD.
std::string ValidUtf8(std::string_view text);

// Writes `text` and a NUL to the host's buffer, as the C header promises it.
norv_battery_status CopyText(std::string_view text, char* buffer, std::size_t bufferSize, std::size_t* needed);

}  // namespace norv::shared::battery::c_interface
