// Runs a program to its end.
#pragma once

namespace norv::platform::windows {

// False, with the last-error code telling why, when the program could not be started.
bool RunProgram(const char* path);

}  // namespace norv::platform::windows
