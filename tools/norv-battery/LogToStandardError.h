#pragma once

namespace norv::tool {

// Makes the library write its log to standard error, one line for each record. `maxSeverity` is a plog severity. Called
// at most once.
void LogToStandardError(unsigned int maxSeverity);

}  // namespace norv::tool
