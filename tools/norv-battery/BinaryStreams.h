#pragma once

namespace norv::tool {

// Makes standard input and standard output carry bytes as they are, where the system would otherwise translate line
// ends.
void UseBinaryStreams();

}  // namespace norv::tool
