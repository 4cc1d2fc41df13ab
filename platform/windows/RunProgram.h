// Runs a program to its end.
#pragma once

namespace norv::platform::windows {

// Only by a full path: what another one names depends on the host's working folder or drive. False, with the last-error
// code telling why, when the program could not be started.
bool RunProgram(const char* path);

}  // namespace norv::platform::windows
