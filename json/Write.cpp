#include "json/Write.h"

#include <array>
#include <charconv>
#include <cmath>

#include "base/Utf8.h"

namespace norv::json {

namespace {

using base::kReplacementCharacter;

enum class Characters { Any, Ascii };

void AppendUnit(char32_t unit, std::string& text) {
  constexpr std::string_view kHexDigits = "0123456789abcdef";
  text += "\\u";
  for (unsigned int shift = 16; shift > 0; shift -= 4) {
    text += kHexDigits[unit >> (shift - 4) & 0x0FU];
  }
}

void AppendEscape(char32_t character, std::string& text) {
  constexpr std::string_view kNamed = "\"\\\b\f\n\r\t";
  constexpr std::string_view kNames = "\"\\bfnrt";
  const std::size_t name = character < 0x80 ? kNamed.find(static_cast<char>(character)) : std::string_view::npos;
  if (name != std::string_view::npos) {
    text += '\\';
    text += kNames[name];
  } else if (character >= base::kBehindTheBasicPlane) {
    AppendUnit(base::HighSurrogateOf(character), text);
    AppendUnit(base::LowSurrogateOf(character), text);
  } else {
    AppendUnit(character, text);
  }
}

bool IsEscaped(char32_t character, Characters characters) {
  const bool isControl = character < 0x20 || (character >= 0x7F && character <= 0x9F);
  return isControl || character == '"' || character == '\\' || (characters == Characters::Ascii && character > 0x7F);
}

void AppendText(std::string_view from, Characters characters, std::string& text) {
  text += '"';
  while (!from.empty()) {
    const base::Utf8Sequence first = base::FirstUtf8Sequence(from);
    if (IsEscaped(first.character.value_or(kReplacementCharacter), characters)) {
      AppendEscape(first.character.value_or(kReplacementCharacter), text);
    } else {
      text += first.character ? from.substr(0, first.length) : "\xEF\xBF\xBD";
    }
    from.remove_prefix(first.length);
  }
  text += '"';
}

// As few digits as give the same number when they are read, and always a mark of a real number.
void AppendReal(double number, std::string& text) {
  if (!std::isfinite(number)) {
    text += "null";  // JSON has no words for it
    return;
  }
  constexpr double kLeastFixed = 1e-4;
  constexpr double kLeastScientific = 1e15;
  const double size = std::abs(number);
  const bool isFixed = size == 0 || (size >= kLeastFixed && size < kLeastScientific);
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                 isFixed ? std::chars_format::fixed : std::chars_format::scientific);
  const std::string_view written(digits.data(), static_cast<std::size_t>(end.ptr - digits.data()));
  text += written;
  text += isFixed && written.find('.') == std::string_view::npos ? ".0" : "";
}

class Writer {
 public:
  explicit Writer(std::optional<std::size_t> indent) : indent_(indent) {}

  void Put(const Value& value) {
    std::visit([this](const auto& content) { PutContent(content); }, value.Any());
  }

  std::string Take() { return std::move(text_); }

 private:
  void PutContent(std::monostate) { text_ += "null"; }
  void PutContent(bool truth) { text_ += truth ? "true" : "false"; }
  void PutContent(std::int64_t number) { text_ += std::to_string(number); }
  void PutContent(std::uint64_t number) { text_ += std::to_string(number); }
  void PutContent(double number) { AppendReal(number, text_); }
  void PutContent(const std::string& text) { AppendText(text, Characters::Any, text_); }
  void PutContent(const Array& array) {
    PutItems('[', ']', array, [this](const Value& item) { Put(item); });
  }
  void PutContent(const Object& object) {
    PutItems('{', '}', object, [this](const Member& member) {
      AppendText(member.key, Characters::Any, text_);
      text_ += indent_ ? ": " : ":";
      Put(member.value);
    });
  }

  template <typename Items, typename PutItem>
  void PutItems(char opening, char closing, const Items& items, PutItem putItem) {
    text_ += opening;
    ++depth_;
    bool isFirst = true;
    for (const auto& item : items) {
      text_ += isFirst ? "" : ",";
      isFirst = false;
      BreakLine();
      putItem(item);
    }
    --depth_;
    if (!isFirst) {
      BreakLine();
    }
    text_ += closing;
  }

  void BreakLine() {
    if (indent_) {
      text_ += '\n';
      text_.append(depth_ * *indent_, ' ');
    }
  }

  std::optional<std::size_t> indent_;
  std::size_t depth_ = 0;
  std::string text_;
};

}  // namespace

std::string Write(const Value& value, std::optional<std::size_t> indent) {
  Writer writer(indent);
  writer.Put(value);
  return writer.Take();
}

std::string QuoteInAscii(std::string_view text) {
  std::string quoted;
  AppendText(text, Characters::Ascii, quoted);
  return quoted;
}

}  // namespace norv::json
