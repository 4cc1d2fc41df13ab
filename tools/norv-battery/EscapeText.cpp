#include "EscapeText.h"

namespace norv::tool {

namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

void AppendEscaped(std::string& text, unsigned char byte) {
  text += "\\x";
  text += kHexDigits[byte >> 4U];
  text += kHexDigits[byte & 0x0FU];
}

}  // namespace

std::string EscapeBytes(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char character : bytes) {
    if (character >= ' ' && character <= '~' && character != '\\') {
      text += character;
    } else {
      AppendEscaped(text, static_cast<unsigned char>(character));
    }
  }
  return text;
}

std::string EscapeText(std::string_view bytes) {
  std::string text = EscapeBytes(bytes);
  if (text.ends_with(' ')) {
    text.pop_back();
    AppendEscaped(text, ' ');
  }
  if (text.starts_with(' ')) {
    text.erase(0, 1);
    text.insert(0, "\\x20");
  }
  return text;
}

std::string BytesToUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x80) {
      text += character;
    } else {
      text += static_cast<char>(0xC0U | (byte >> 6U));
      text += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return text;
}

std::string_view WithoutLineBreak(std::string_view message) {
  const auto last = message.find_last_not_of("\r\n");
  return last == std::string_view::npos ? std::string_view() : message.substr(0, last + 1);
}

}  // namespace norv::tool
