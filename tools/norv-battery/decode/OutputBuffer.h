// Text that is put together at the speed of memory.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace norv::tool {

// A text that grows at its end and keeps its memory when it is cleared. std::string would do, but each of its appends
// is a call, and a row has two hundred of them.
class OutputBuffer {
 public:
  OutputBuffer() = default;
  OutputBuffer(const OutputBuffer&) = delete;
  OutputBuffer& operator=(const OutputBuffer&) = delete;
  ~OutputBuffer() = default;

  // Room for `size` bytes at the end of the text. What is written there belongs to the text after ExtendTo(), which
  // takes the end of it.
  char* Reserve(std::size_t size) {
    if (static_cast<std::size_t>(limit_ - end_) < size) {
      Grow(size);
    }
    return end_;
  }
  void ExtendTo(char* end) { end_ = end; }

  void Append(std::string_view text) {
    char* const start = Reserve(text.size());
    ExtendTo(start + text.copy(start, text.size()));  // which an empty text may do without an address
  }

  void Append(char character) {
    char* const start = Reserve(1);
    *start = character;
    ExtendTo(start + 1);
  }

  // There must be a last character.
  void ReplaceLast(char character) { end_[-1] = character; }

  std::string_view View() const { return {storage_.data(), static_cast<std::size_t>(end_ - storage_.data())}; }
  void Clear() { end_ = storage_.data(); }

 private:
  void Grow(std::size_t size);

  std::vector<char> storage_;
  char* end_ = nullptr;
  char* limit_ = nullptr;
};

}  // namespace norv::tool
