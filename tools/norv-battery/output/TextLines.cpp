#include "output/TextLines.h"

#include <cstddef>

#include "output/EscapeText.h"

namespace norv::tool {

namespace {

constexpr std::size_t kNameWidth = 32;

}  // namespace

void TextLines::Line(std::string_view text) {
  text_ += text;
  text_ += '\n';
}

void TextLines::Heading(const std::string& text) {
  Line("");
  Line(text);
  Line(std::string(text.size(), '='));
}

void TextLines::Section(std::string_view name) {
  Line("");
  Line(name);
}

void TextLines::Row(const std::string& name, const std::string& value) {
  const std::size_t blanks = name.size() < kNameWidth ? kNameWidth - name.size() : 1;
  Line("  " + name + std::string(blanks, ' ') + value);
}

void TextLines::Row(const std::string& name, int value) {
  Row(name, std::to_string(value));
}

std::string OrEmpty(const std::string& bytes) {
  return bytes.empty() ? "(empty)" : EscapeText(bytes);
}

}  // namespace norv::tool
