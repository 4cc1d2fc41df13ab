// A product version as "1.2.3.4".
#pragma once

#include <optional>
#include <string>

#include "machine/JsonNode.h"
#include "norv/platform/Platform.h"

namespace norv::simulator {

std::string VersionText(const platform::ProductVersion& version);

// Nothing for a text that is not four 16-bit numbers without leading zeros.
std::optional<platform::ProductVersion> ParseVersion(const std::string& text);

// As a machine file has it, where null stands for none. Throws MachineFileError.
std::optional<platform::ProductVersion> ReadVersion(const JsonNode& node);

}  // namespace norv::simulator
