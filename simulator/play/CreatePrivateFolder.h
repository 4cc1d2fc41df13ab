// Making a folder that is one's own.
#pragma once

#include <filesystem>

namespace norv::simulator {

// Makes the folder so that nobody but its owner ever looks into it. False when it cannot be made, or is there already.
bool CreatePrivateFolder(const std::filesystem::path& folder);

}  // namespace norv::simulator
