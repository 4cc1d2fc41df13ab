// An open file, and how one that others may have written is read.
#pragma once

#include <cstddef>
#include <string>

namespace norv::platform::posix {

// Closes the file that it owns; a negative number is no file.
class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor();

  bool IsOpen() const { return descriptor_ >= 0; }
  int Number() const { return descriptor_; }

 private:
  int descriptor_;
};

// Reads the file `name`, whose path begins at the open folder `folder` (AT_FDCWD for a full path), into `content`. It
// must be an ordinary file, not a link to one, of at most `limit` bytes. Returns 0, or the errno value of the failure.
// Does not wait: for the other end of a pipe as little as for whoever holds a lease of the file.
int ReadOrdinaryFileAt(int folder, const char* name, std::size_t limit, std::string& content);

}  // namespace norv::platform::posix
