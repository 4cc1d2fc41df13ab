// How messages show values and their places.
#pragma once

#include <cstddef>
#include <string>

#include "json/Value.h"

namespace norv::json {

// How a member of `path` is written: "path.key", or path["odd key"].
std::string MemberPath(const std::string& path, const std::string& key);

std::string ItemPath(const std::string& path, std::size_t index);

// The value itself, in ASCII and cut where it is long; of an array or an object, what it is.
std::string Describe(const Value& value);

// `text`, cut where it is long.
std::string Shortened(const std::string& text);

}  // namespace norv::json
