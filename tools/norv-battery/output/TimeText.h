#pragma once

#include <ctime>
#include <string>

namespace norv::tool {

// "2024-06-01T12:00:00Z"
std::string TimeText(std::time_t time);

}  // namespace norv::tool
