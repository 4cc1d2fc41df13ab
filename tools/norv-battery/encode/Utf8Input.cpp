#include "encode/Utf8Input.h"

#include <cstddef>
#include <utility>

namespace norv::tool {

std::string_view Utf8Input::Start() {
  underflow();
  return {gptr(), static_cast<std::size_t>(egptr() - gptr())};
}

Utf8Input::int_type Utf8Input::underflow() {
  while (gptr() == egptr() && !isAtEnd_) {
    Fill();
  }
  return gptr() == egptr() ? traits_type::eof() : traits_type::to_int_type(*gptr());
}

void Utf8Input::Fill() {
  constexpr std::size_t kSize = 65536;
  std::vector<char> bytes(kSize);
  const auto count = static_cast<std::size_t>(source_.sgetn(bytes.data(), kSize));
  isAtEnd_ = count < kSize;
  std::string_view piece(bytes.data(), count);
  if (const auto order = std::exchange(isAtStart_, false) ? Utf16OrderOf(piece) : std::nullopt) {
    utf16_.emplace(*order);
    piece.remove_prefix(kUtf16MarkSize);
  }
  text_.clear();
  if (utf16_) {
    utf16_->Append(piece, isAtEnd_, text_);
  } else {
    text_.assign(piece.begin(), piece.end());
  }
  setg(text_.data(), text_.data(), text_.data() + text_.size());
}

}  // namespace norv::tool
