#pragma once

namespace norv::tool {

// Makes the library write its log to standard error, one line for each record, with the time in UTC. `maxSeverity` is a
// plog severity. Called at most once.
void LogToStandardError(unsigned int maxSeverity);

}  // namespace norv::tool
