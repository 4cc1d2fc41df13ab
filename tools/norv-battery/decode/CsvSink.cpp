#include "decode/CsvSink.h"

#include <cstring>

#include "EscapeText.h"

namespace norv::tool {

namespace {

// True when `text` holds nothing that CSV or UTF-8 has a special way to write.
bool IsPlain(std::string_view text) {
  bool isPlain = true;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    isPlain &= byte >= ' ' && byte < 0x80 && byte != '"' && byte != ',';
  }
  return isPlain && !text.starts_with(' ') && !text.ends_with(' ');
}

// Quotation marks are for fields that would be read as something else without them; a blank at either end would be
// lost.
bool NeedsQuotes(std::string_view text) {
  return text.find_first_of("\",\r\n") != std::string_view::npos || text.starts_with(' ') || text.ends_with(' ');
}

}  // namespace

void CsvSink::Bytes(const char* /*key*/, std::string_view bytes) {
  IsPlain(bytes) ? Plain(bytes) : Special(BytesToUtf8(bytes));
}

void CsvSink::Utf8(const char* /*key*/, std::string_view text) {
  IsPlain(text) ? Plain(text) : Special(text);
}

void CsvSink::Plain(std::string_view text) {
  char* const to = output_.Reserve(text.size() + 1);
  std::memcpy(to, text.data(), text.size());
  to[text.size()] = ',';
  output_.ExtendTo(to + text.size() + 1);
}

void CsvSink::Special(std::string_view text) {
  if (!NeedsQuotes(text)) {
    Plain(text);
    return;
  }
  output_.Append('"');
  for (const char character : text) {
    if (character == '"') {
      output_.Append('"');
    }
    output_.Append(character);
  }
  output_.Append(std::string_view("\","));
}

}  // namespace norv::tool
