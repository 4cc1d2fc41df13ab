// A text that lives where it is declared.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace norv::shared::battery::record {

// Up to `Capacity` characters and a terminator, without memory of its own.
template <std::size_t Capacity>
class FixedText {
 public:
  constexpr FixedText() = default;

  // Takes the first `Capacity` characters of `text`.
  constexpr explicit FixedText(std::string_view text) : length_(std::min(text.size(), Capacity)) {
    std::copy_n(text.begin(), length_, characters_.begin());
  }

  constexpr const char* Terminated() const { return characters_.data(); }
  constexpr std::string_view View() const { return {characters_.data(), length_}; }

 private:
  std::array<char, Capacity + 1> characters_{};
  std::size_t length_ = 0;
};

}  // namespace norv::shared::battery::record
