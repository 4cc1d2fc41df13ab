#pragma once

#include <optional>
#include <streambuf>
#include <string_view>
#include <vector>

#include "decode/Utf16.h"

namespace norv::tool {

// The bytes of another buffer, which outlives it; those of a text in UTF-16 with a byte order mark come as UTF-8.
class Utf8Input : public std::streambuf {
 public:
  explicit Utf8Input(std::streambuf& source) : source_(source) {}

  // What comes first; nothing of it is taken.
  std::string_view Start();

 protected:
  int_type underflow() override;  // NOLINT(readability-identifier-naming): the standard library's name

 private:
  void Fill();

  std::streambuf& source_;
  bool isAtStart_ = true;
  bool isAtEnd_ = false;
  std::optional<Utf16Decoder> utf16_;
  std::vector<char> text_;
};

}  // namespace norv::tool
