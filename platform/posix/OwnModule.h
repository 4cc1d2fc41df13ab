// The file that this library was loaded from.
#pragma once

#include <optional>
#include <string>

namespace norv::platform::posix {

// Its full path, as it was when the library was loaded. Nothing when it was not known then, or is by now the path of
// another file or of none.
std::optional<std::string> OwnPath();

// The file's name at that time; empty when it was not known.
std::string OwnName();

}  // namespace norv::platform::posix
