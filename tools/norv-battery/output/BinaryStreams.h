#pragma once

namespace norv::tool {

// Puts the null device in the place of each standard stream that is missing: the next file that is opened would take
// its number, and get what is said on standard error. What reads or writes the missing stream fails as ever.
void FillMissingStreams();

// Makes standard input and standard output carry bytes as they are, where the system would otherwise translate line
// ends.
void UseBinaryStreams();

}  // namespace norv::tool
