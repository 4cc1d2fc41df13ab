// The forms in which a watch shows a reading.
#pragma once

#include <string>
#include <vector>

#include "watch/Reading.h"

namespace norv::tool {

// One line of JSON.
std::string JsonLine(const Reading& reading, const std::vector<Change>& changes);

// A line of time and number, and below it one line for each change; of the first reading, which batteries there are.
std::string TextBlock(const Reading& reading, const std::vector<Change>& changes);

// The whole screen of a terminal, with a mark at what has changed. `title` is a line above it.
std::string Screen(const std::string& title, const Reading& reading, const std::vector<Change>& changes);

}  // namespace norv::tool
