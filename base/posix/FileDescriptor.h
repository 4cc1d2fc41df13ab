// The owner of an open file.
#pragma once

#include <unistd.h>

#include <utility>

namespace norv::base {

// A negative number is no file.
class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { Close(); }

  bool IsOpen() const { return descriptor_ >= 0; }
  int Number() const { return descriptor_; }

  // False, with errno telling why, when what was written may be lost.
  bool Close() { return !IsOpen() || ::close(std::exchange(descriptor_, -1)) == 0; }

 private:
  int descriptor_;
};

}  // namespace norv::base
