// Reads machine files.
#pragma once

#include <string>

#include "machine/MachineDescription.h"

namespace norv::simulator {

// Throws MachineFileError; `file` names the text in its message.
MachineDescription ReadMachine(const std::string& text, const std::string& file);

// The text of the file `path`. Throws MachineFileError.
std::string ReadTextFile(const std::string& path);

}  // namespace norv::simulator
