#include "decode/Recognise.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "decode/DumpText.h"
#include "decode/HexDigits.h"
#include "decode/Lines.h"
#include "decode/Utf16.h"

namespace norv::tool {

namespace {

// The start that tells what the rest is.
std::string_view Sample(std::string_view start) {
  constexpr std::size_t kEnough = 1024;
  return start.substr(0, kEnough);
}

// A text has no control characters but tabs and line ends; a block has no battery without bytes of zero. A slot that
// nothing was written to may have all bits set instead, which is a letter in old encodings, but never twice in a row.
bool IsText(std::string_view start) {
  const std::string_view sample = Sample(start);
  return sample.find("\xFF\xFF") == std::string_view::npos &&
         std::none_of(sample.begin(), sample.end(), [](char character) {
           const auto byte = static_cast<unsigned char>(character);
           return byte < ' ' && character != '\t' && character != '\r' && character != '\n';
         });
}

constexpr std::string_view kMachineFile =
    "is a machine file: 'norv-battery report --machine' reads it, 'norv-battery encode --machine' makes blocks of it";

// What JSON holds that has this key, in the order in which they are looked for.
struct JsonKind {
  std::string_view key;
  std::string_view refusal;
};

constexpr std::array<JsonKind, 5> kJsonKinds{{
    {"\"rowError\"", "holds decoded rows: 'norv-battery encode' makes blocks of them"},
    {"\"batteries\"", "is a JSON report: 'norv-battery encode' makes blocks of it"},
    {"\"slots\"", kMachineFile},
    {"\"answers\"", kMachineFile},
    {"\"recordedFrom\"", kMachineFile},
}};

// An identifier may begin like JSON, but its line ends in digits.
bool IsJson(std::string_view text) {
  constexpr std::string_view kSpace = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kSpace);
  const std::size_t second = first == std::string_view::npos ? first : text.find_first_not_of(kSpace, first + 1);
  if (second == std::string_view::npos) {
    return false;
  }
  const std::string_view line = Trim(FirstLine(text.substr(first)));
  return (text[first] == '{' || text[first] == '[') &&
         std::string_view("\"{}[]").find(text[second]) != std::string_view::npos && DigitValue(line.back()) == kNoDigit;
}

}  // namespace

std::string_view WithoutMark(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  return text.starts_with(kByteOrderMark) ? text.substr(kByteOrderMark.size()) : text;
}

InputKind KindOf(std::string_view start) {
  if (!IsText(start)) {
    return InputKind::Binary;
  }
  return IsDump(WithoutMark(start)) ? InputKind::Dump : InputKind::Hexadecimal;
}

std::string RefusalOf(std::string_view start) {
  if (IsUtf16WithoutMark(Sample(start))) {
    return "is a text in UTF-16 without a byte order mark: expected the mark, or a text in UTF-8";
  }
  const std::string_view text = WithoutMark(start);
  if (!IsText(text) || !IsJson(text)) {
    return "";
  }
  const auto* const kind = std::find_if(kJsonKinds.begin(), kJsonKinds.end(), [text](const JsonKind& known) {
    return text.find(known.key) != std::string_view::npos;
  });
  return std::string(kind != kJsonKinds.end()
                         ? kind->refusal
                         : "is JSON: expected blocks of 128 bytes, or lines of 256 hexadecimal digits");
}

}  // namespace norv::tool
