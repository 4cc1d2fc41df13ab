#include "machine/HexText.h"

#include <charconv>
#include <system_error>

namespace norv::simulator {

std::string HexText(std::span<const unsigned char> bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const unsigned char byte : bytes) {
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 0xFU]);
  }
  return text;
}

std::optional<std::vector<unsigned char>> FromHexText(std::string text) {
  std::erase(text, ' ');
  std::vector<unsigned char> bytes(text.size() / 2);
  bool good = text.size() % 2 == 0;
  for (std::size_t i = 0; good && i < bytes.size(); ++i) {
    const char* const start = text.data() + 2 * i;
    const auto result = std::from_chars(start, start + 2, bytes[i], 16);
    good = result.ec == std::errc() && result.ptr == start + 2;
  }
  return good ? std::optional(std::move(bytes)) : std::nullopt;
}

}  // namespace norv::simulator
