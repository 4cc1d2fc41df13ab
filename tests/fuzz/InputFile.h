// A fuzz input as a file that exists in memory only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace norv::test {

class InputFile {
 public:
  InputFile(const std::uint8_t* data, std::size_t size);
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  // Whoever opens it reads it from its start.
  std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

}  // namespace norv::test
