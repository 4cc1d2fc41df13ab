#include "fuzz/InputFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/Check.h"

namespace norv::test {

InputFile::InputFile(const std::uint8_t* data, std::size_t size) : descriptor_(memfd_create("input", 0)) {
  Require(descriptor_ >= 0 && write(descriptor_, data, size) == static_cast<ssize_t>(size), "a file in memory");
}

InputFile::~InputFile() {
  close(descriptor_);
}

}  // namespace norv::test
