#include "machine/Text.h"

#include <algorithm>
#include <cstddef>

namespace norv::simulator {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

char32_t JoinSurrogates(char32_t high, char32_t low) {
  return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

void AppendUtf8(char32_t point, std::string& text) {
  const auto append = [&text](char32_t byte) { text.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
  if (point < 0x80) {
    append(point);
  } else if (point < 0x800) {
    append(0xC0 | (point >> 6));
    append(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    append(0xE0 | (point >> 12));
    append(0x80 | ((point >> 6) & 0x3F));
    append(0x80 | (point & 0x3F));
  } else {
    append(0xF0 | (point >> 18));
    append(0x80 | ((point >> 12) & 0x3F));
    append(0x80 | ((point >> 6) & 0x3F));
    append(0x80 | (point & 0x3F));
  }
}

// How many bytes follow a leading byte, and which of its bits count.
struct Leading {
  std::size_t followers;
  char32_t bits;
};

Leading ReadLeading(unsigned char byte) {
  if (byte < 0x80) {
    return {0, byte};
  }
  if (byte >= 0xC2 && byte < 0xE0) {
    return {1, byte & 0x1FU};
  }
  if (byte >= 0xE0 && byte < 0xF0) {
    return {2, byte & 0x0FU};
  }
  if (byte >= 0xF0 && byte < 0xF5) {
    return {3, byte & 0x07U};
  }
  return {0, kReplacement};
}

std::u32string Decode(std::string_view utf8) {
  std::u32string points;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const Leading leading = ReadLeading(static_cast<unsigned char>(utf8[i]));
    char32_t point = leading.bits;
    for (std::size_t left = leading.followers; left > 0; --left) {
      const bool continues = i + 1 < utf8.size() && (static_cast<unsigned char>(utf8[i + 1]) & 0xC0U) == 0x80;
      if (!continues) {
        point = kReplacement;
        break;
      }
      point = (point << 6) | (static_cast<unsigned char>(utf8[++i]) & 0x3FU);
    }
    points.push_back(point);
  }
  return points;
}

}  // namespace

std::string ToUtf8(const std::wstring& wide) {
  std::string text;
  for (std::size_t i = 0; i < wide.size(); ++i) {
    auto point = static_cast<char32_t>(wide[i]);
    const char32_t next = i + 1 < wide.size() ? static_cast<char32_t>(wide[i + 1]) : 0;
    if (IsHighSurrogate(point) && IsLowSurrogate(next)) {
      point = JoinSurrogates(point, next);
      ++i;
    } else if (IsHighSurrogate(point) || IsLowSurrogate(point) || point > 0x10FFFF) {
      point = kReplacement;
    }
    AppendUtf8(point, text);
  }
  return text;
}

std::wstring ToWide(std::string_view utf8) {
  std::wstring wide;
  for (const char32_t point : Decode(utf8)) {
    if (sizeof(wchar_t) == 2 && point > 0xFFFF) {
      wide.push_back(static_cast<wchar_t>(0xD800 + ((point - 0x10000) >> 10)));
      wide.push_back(static_cast<wchar_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
    } else {
      wide.push_back(static_cast<wchar_t>(point));
    }
  }
  return wide;
}

std::optional<std::string> ToBytes(std::string_view utf8) {
  std::string bytes;
  for (const char32_t point : Decode(utf8)) {
    if (point > 0xFF) {
      return std::nullopt;
    }
    bytes.push_back(static_cast<char>(static_cast<unsigned char>(point)));
  }
  return bytes;
}

std::string ByteText(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    AppendUtf8(static_cast<unsigned char>(byte), text);
  }
  return text;
}

bool IsUtf8(std::string_view text) {
  return ToUtf8(ToWide(text)) == text;
}

std::string AsUtf8(const std::string& text) {
  return IsUtf8(text) ? text : ByteText(text);
}

std::string Folded(std::string_view text) {
  std::string folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return folded;
}

}  // namespace norv::simulator
