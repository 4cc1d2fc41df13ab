#pragma once

#include <string>
#include <string_view>

namespace norv::tool {

// Collects the lines of a text report.
class TextLines {
 public:
  void Line(std::string_view text);
  // A heading over sections, and one over rows; both stand off from what was before them.
  void Heading(const std::string& text);
  void Section(std::string_view name);
  void Row(const std::string& name, const std::string& value);
  void Row(const std::string& name, int value);
  void Append(const TextLines& other) { text_ += other.text_; }

  const std::string& Text() const { return text_; }

 private:
  std::string text_;
};

// The firmware's text for people; "(empty)" where it is empty.
std::string OrEmpty(const std::string& bytes);

}  // namespace norv::tool
