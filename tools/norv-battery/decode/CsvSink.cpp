#include "decode/CsvSink.h"

#include <algorithm>
#include <array>

#include "base/Utf8.h"
#include "output/EscapeText.h"

namespace norv::tool {

namespace {

// What a spreadsheet takes a field for a formula by, their wide forms included; and the mark that makes a text of it,
// so that it can be told from one that was there before.
constexpr std::array<std::string_view, 9> kFormulaStarts = {"=",      "+",      "-",      "@", "\uFF1D",
                                                            "\uFF0B", "\uFF0D", "\uFF20", "'"};

// A sign alone runs nothing, and names standard input.
bool StartsFormula(std::string_view text) {
  return text.size() > 1 && std::any_of(kFormulaStarts.begin(), kFormulaStarts.end(),
                                        [text](std::string_view start) { return text.starts_with(start); });
}

// True when `text` holds nothing that CSV, UTF-8 or a spreadsheet has a special way with.
bool IsPlain(std::string_view text) {
  constexpr std::string_view kSpecialStarts = " =+-@'";
  bool isPlain = true;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    isPlain &= byte >= ' ' && byte < 0x7F && byte != '"' && byte != ',' && byte != ';';
  }
  return isPlain && !text.ends_with(' ') && (text.empty() || kSpecialStarts.find(text[0]) == std::string_view::npos);
}

// Quotation marks are for fields that would be read as something else without them; a blank at either end would be
// lost. Where a comma is the decimal point, a spreadsheet ends fields at semicolons.
bool NeedsQuotes(std::string_view text) {
  return text.find_first_of("\",;\r\n") != std::string_view::npos || text.starts_with(' ') || text.ends_with(' ');
}

std::string Harmless(std::string_view text) {
  return (StartsFormula(text) ? "'" : "") + EscapeControls(text);
}

}  // namespace

void CsvSink::Bytes(const char* /*key*/, std::string_view bytes) {
  IsPlain(bytes) ? Plain(bytes) : Special(base::BytesToUtf8(bytes));
}

void CsvSink::Utf8(const char* /*key*/, std::string_view text) {
  IsPlain(text) ? Plain(text) : Special(text);
}

void CsvSink::Plain(std::string_view text) {
  char* const to = output_.Reserve(text.size() + 1);
  char* const end = to + text.copy(to, text.size());  // which an empty text may do without an address
  *end = ',';
  output_.ExtendTo(end + 1);
}

void CsvSink::Special(std::string_view text) {
  texts_ == CsvTexts::Raw ? Quoted(text) : Quoted(Harmless(text));
}

void CsvSink::Quoted(std::string_view text) {
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
