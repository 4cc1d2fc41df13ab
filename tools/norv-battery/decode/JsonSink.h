// Writes the rows of `norv-battery decode` as JSON Lines.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

#include "decode/Digits.h"
#include "decode/OutputBuffer.h"
#include "norv/shared/error/Error.h"

namespace norv::tool {

// A JSON writer for what a row holds and nothing else: keys are literals that need no escapes, and every object has a
// member. Each member leaves a comma behind it, which the end of its object overwrites.
//
// Each call asks the buffer for room once and then writes through a pointer of its own: a byte that is written could be
// one of the buffer's own members, for all the compiler knows, and would make it read them again.
class JsonSink {
 public:
  explicit JsonSink(OutputBuffer& output) : output_(output) {}

  void BeginRow() { output_.Append('{'); }
  void EndRow() {
    output_.ReplaceLast('}');
    output_.Append('\n');
  }

  template <std::size_t Size>
  void Open(const char (&key)[Size]) {
    char* to = PutKey(output_.Reserve(Size + kAroundKey + 1), key);
    *to++ = '{';
    output_.ExtendTo(to);
  }
  void Close() {
    output_.ReplaceLast('}');
    output_.Append(',');
  }

  template <std::size_t Size, std::integral Integer>
  void Number(const char (&key)[Size], Integer value) {
    char* to = PutKey(output_.Reserve(Size + kAroundKey + kMostDigits + 1), key);
    to = PutNumber(to, value);
    *to++ = ',';
    output_.ExtendTo(to);
  }

  template <std::size_t Size>
  void Number(const char (&key)[Size], std::optional<int> value) {
    value ? Number(key, *value) : Null(key);
  }

  template <std::size_t Size>
  void Percentage(const char (&key)[Size], std::optional<float> value) {
    if (!value) {
      Null(key);
      return;
    }
    char* to = PutKey(output_.Reserve(Size + kAroundKey + kMostDigits + 1), key);
    to = PutPercentage(to, *value);
    *to++ = ',';
    output_.ExtendTo(to);
  }

  template <std::size_t Size, std::size_t Count>
  void Numbers(const char (&key)[Size], const std::array<int, Count>& values) {
    char* to = PutKey(output_.Reserve(Size + kAroundKey + Count * (kMostDigits + 1) + 2), key);
    *to++ = '[';
    for (const int value : values) {
      to = PutNumber(to, value);
      *to++ = ',';
    }
    to[-1] = ']';
    *to++ = ',';
    output_.ExtendTo(to);
  }

  template <std::size_t Size>
  void Boolean(const char (&key)[Size], bool value) {
    value ? Literal(key, "true,") : Literal(key, "false,");
  }

  template <std::size_t Size>
  void Null(const char (&key)[Size]) {
    Literal(key, "null,");
  }

  // A text of bytes: each becomes the code point of its number.
  template <std::size_t Size>
  void Bytes(const char (&key)[Size], std::string_view bytes) {
    Text<true>(key, bytes);
  }

  // A text that is UTF-8 already.
  template <std::size_t Size>
  void Utf8(const char (&key)[Size], std::string_view text) {
    Text<false>(key, text);
  }

  template <std::size_t Size>
  void Utf8(const char (&key)[Size], const std::optional<std::string_view>& text) {
    text ? Utf8(key, *text) : Null(key);
  }

  // `error` may be null.
  template <std::size_t Size>
  void Failure(const char (&key)[Size], const shared::error::Error* error) {
    if (error == nullptr) {
      Null(key);
      return;
    }
    Open(key);
    Number("category", static_cast<int>(error->GetCategory()));
    Number("code", error->GetCode());
    Bytes("message", error->GetMessageText());
    Bytes("type", error->GetTypeText());
    Bytes("function", error->GetFunctionText());
    Close();
  }

 private:
  // Control characters, to the terminal that shows a row, are also U+007F and U+0080 to U+009F, which UTF-8 writes as
  // one lead byte and their number.
  static constexpr unsigned char kDelete = 0x7F;
  static constexpr unsigned char kLeadOfControls = 0xC2;
  static constexpr bool IsUpperControl(unsigned char number) { return number >= 0x80 && number < 0xA0; }

  static constexpr std::size_t kAroundKey = 2;  // quotation marks and colon, less the terminator that a Size counts

  template <std::size_t Size>
  static char* PutKey(char* to, const char (&key)[Size]) {
    constexpr std::size_t kLength = Size - 1;
    to[0] = '"';
    std::memcpy(to + 1, key, kLength);
    to[kLength + 1] = '"';
    to[kLength + 2] = ':';
    return to + kLength + 3;
  }

  template <std::size_t Size, std::size_t LiteralSize>
  void Literal(const char (&key)[Size], const char (&literal)[LiteralSize]) {
    char* const to = PutKey(output_.Reserve(Size + kAroundKey + LiteralSize), key);
    std::memcpy(to, literal, LiteralSize - 1);
    output_.ExtendTo(to + LiteralSize - 1);
  }

  template <bool kAreBytes, std::size_t Size>
  void Text(const char (&key)[Size], std::string_view text) {
    constexpr std::size_t kLongestForm = 6;  // \u001F
    char* to = PutKey(output_.Reserve(Size + kAroundKey + kLongestForm * text.size() + 3), key);
    *to++ = '"';
    to = PutCharacters<kAreBytes>(to, text.data(), text.data() + text.size());
    *to++ = '"';
    *to++ = ',';
    output_.ExtendTo(to);
  }

  template <bool kAreBytes>
  static char* PutCharacters(char* to, const char* from, const char* end) {
    while (static_cast<std::size_t>(end - from) >= sizeof(std::uint64_t) && ArePlain(from)) {
      std::memcpy(to, from, sizeof(std::uint64_t));
      to += sizeof(std::uint64_t);
      from += sizeof(std::uint64_t);
    }
    for (; from != end; ++from) {
      const auto byte = static_cast<unsigned char>(*from);
      if (IsPlain(byte)) {
        *to++ = *from;
      } else if (!kAreBytes && byte == kLeadOfControls && IsUpperControl(static_cast<unsigned char>(from[1]))) {
        to = PutControl(to, static_cast<unsigned char>(*++from));
      } else {
        to = PutSpecial<kAreBytes>(to, byte);
      }
    }
    return to;
  }

  static bool IsPlain(unsigned char byte) { return byte >= ' ' && byte < kDelete && byte != '"' && byte != '\\'; }

  // IsPlain for eight characters at once. A byte of `x` is 0 exactly where the top bit of `((x & 0x7F..) + 0x7F..) | x`
  // is clear, and a character is below 0x20 where adding 0x60 leaves its top bit clear.
  static bool ArePlain(const char* characters) {
    constexpr std::uint64_t kEach = 0x0101010101010101U;
    constexpr std::uint64_t kTop = 0x80 * kEach;
    std::uint64_t word = 0;
    std::memcpy(&word, characters, sizeof word);
    const std::uint64_t low = word & ~kTop;
    const std::uint64_t notQuote = (low ^ ('"' * kEach)) + 0x7F * kEach;
    const std::uint64_t notBackslash = (low ^ ('\\' * kEach)) + 0x7F * kEach;
    const std::uint64_t notDelete = (low ^ (kDelete * kEach)) + 0x7F * kEach;
    const std::uint64_t notControl = low + 0x60 * kEach;
    return (notQuote & notBackslash & notDelete & notControl & ~word & kTop) == kTop;
  }

  static char* PutControl(char* to, unsigned char number) {
    constexpr std::string_view kHexDigits = "0123456789abcdef";
    std::string_view("\\u00").copy(to, 4);
    to[4] = kHexDigits[number >> 4U];
    to[5] = kHexDigits[number & 0x0FU];
    return to + 6;
  }

  template <bool kAreBytes>
  static char* PutSpecial(char* to, unsigned char byte) {
    if (byte < ' ' || byte == kDelete || (kAreBytes && IsUpperControl(byte))) {
      return PutControl(to, byte);
    }
    if (byte < 0x80) {  // a quotation mark or a backslash
      to[0] = '\\';
      to[1] = static_cast<char>(byte);
      return to + 2;
    }
    if constexpr (kAreBytes) {
      to[0] = static_cast<char>(0xC0U | (byte >> 6U));
      to[1] = static_cast<char>(0x80U | (byte & 0x3FU));
      return to + 2;
    } else {
      to[0] = static_cast<char>(byte);
      return to + 1;
    }
  }

  OutputBuffer& output_;
};

}  // namespace norv::tool
