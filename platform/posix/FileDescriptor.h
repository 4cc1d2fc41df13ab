// How a file that others may have written is read.
#pragma once

#include <cstddef>
#include <string>

#include "base/posix/FileDescriptor.h"

namespace norv::platform::posix {

using base::FileDescriptor;

// Reads the file `name`, whose path begins at the open folder `folder` (AT_FDCWD for a full path), into `content`. It
// must be an ordinary file, not a link to one, of at most `limit` bytes. Returns 0, or the errno value of the failure.
// Does not wait: for the other end of a pipe as little as for whoever holds a lease of the file.
int ReadOrdinaryFileAt(int folder, const char* name, std::size_t limit, std::string& content);

}  // namespace norv::platform::posix
