// The version resource of a program file.
#pragma once

#include <optional>

#include "norv/platform/Platform.h"

namespace norv::platform::windows {

// The product version, not the file's own. Nothing, with the last-error code telling why, without a readable resource.
std::optional<ProductVersion> ReadProductVersion(const char* path);

}  // namespace norv::platform::windows
