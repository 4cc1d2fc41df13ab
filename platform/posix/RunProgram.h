// Starting a program and waiting for its end.
#pragma once

namespace norv::platform::posix {

// Starts the program file `path` without arguments, with the environment and folder of this process, its standard
// input, output and error, and no other open file. Waits until it has ended. Returns 0, or the errno value of why it
// could not be started.
int RunProgram(const char* path);

}  // namespace norv::platform::posix
