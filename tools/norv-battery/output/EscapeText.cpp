#include "output/EscapeText.h"

namespace norv::tool {

namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

void AppendEscaped(std::string& text, unsigned char byte) {
  text += "\\x";
  text += kHexDigits[byte >> 4U];
  text += kHexDigits[byte & 0x0FU];
}

bool IsPrintable(char character) {
  return character >= ' ' && character <= '~';
}

}  // namespace

std::string EscapeBytes(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char character : bytes) {
    if (IsPrintable(character) && character != '\\') {
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

std::string EscapeControls(std::string_view text) {
  constexpr char kLeadOfUpperControls = '\xC2';
  std::string escaped;
  for (std::size_t position = 0; position < text.size(); ++position) {
    const bool hasTwoBytes = text[position] == kLeadOfUpperControls && position + 1 < text.size();
    const auto last = static_cast<unsigned char>(text[position + (hasTwoBytes ? 1 : 0)]);
    const bool isControl = hasTwoBytes ? last < 0xA0 : last < ' ' || last == 0x7F;
    if (isControl) {
      AppendEscaped(escaped, last);
    } else {
      escaped += text.substr(position, hasTwoBytes ? 2 : 1);
    }
    position += hasTwoBytes ? 1 : 0;
  }
  return escaped;
}

std::string Quote(std::string_view bytes) {
  constexpr std::size_t kMost = 200;
  if (bytes.size() <= kMost) {
    return "'" + EscapeText(bytes) + "'";
  }
  return "'" + EscapeText(bytes.substr(0, kMost)) + "...' (" + std::to_string(bytes.size()) + " characters)";
}

// What is wrong often stands at the end, behind what was quoted.
std::string PrintableLine(std::string_view line) {
  constexpr std::size_t kStart = 2000;
  constexpr std::size_t kEnd = 1000;
  if (line.size() > kStart + kEnd) {
    return PrintableLine(line.substr(0, kStart)) + " ... " + PrintableLine(line.substr(line.size() - kEnd));
  }
  std::string text;
  for (const char character : line) {
    if (IsPrintable(character)) {
      text += character;
    } else {
      AppendEscaped(text, static_cast<unsigned char>(character));
    }
  }
  return text;
}

std::string_view WithoutLineBreak(std::string_view message) {
  const auto last = message.find_last_not_of("\r\n");
  return last == std::string_view::npos ? std::string_view() : message.substr(0, last + 1);
}

}  // namespace norv::tool
