#include "decode/CsvSink.h"

#include <algorithm>

#include "EscapeText.h"

namespace norv::tool {

namespace {

// Quotation marks are for fields that would be read as something else without them; a blank at either end would be
// lost.
bool NeedsQuotes(std::string_view text) {
  return text.find_first_of("\",\r\n") != std::string_view::npos || text.starts_with(' ') || text.ends_with(' ');
}

}  // namespace

void CsvSink::Bytes(const char* key, std::string_view bytes) {
  const bool isAscii =
      std::all_of(bytes.begin(), bytes.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
  isAscii ? Utf8(key, bytes) : Utf8(key, std::string_view(BytesToUtf8(bytes)));
}

void CsvSink::Utf8(const char* /*key*/, std::string_view text) {
  if (!NeedsQuotes(text)) {
    output_.Append(text);
    output_.Append(',');
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
