// Parses the text of a machine file.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace norv::simulator {

// Throws MachineFileError, with line and column, when the text is no JSON, and with the path of a key that stands twice
// in one object.
nlohmann::json ParseJson(const std::string& text, const std::string& file);

}  // namespace norv::simulator
