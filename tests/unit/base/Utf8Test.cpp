// Texts on their way to UTF-8.
#include "base/Utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace norv::base {
namespace {

// The first and the last character of each length, and the neighbours of the surrogates.
constexpr const char* kWellFormed[] = {"",
                                       "Balanced",
                                       "\x01\x7F",
                                       "\xC2\x80\xDF\xBF",
                                       "\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF",
                                       "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
                                       "\xE1\x80\x80\xF1\xBF\xBF\xBF",
                                       "a\u00E9\u20AC\U0001F50Bz"};

TEST(Utf8, WellFormedOnly) {
  for (const char* text : kWellFormed) {
    EXPECT_TRUE(IsUtf8(text)) << text;
    EXPECT_EQ(AsUtf8(text), text);
    EXPECT_EQ(ValidUtf8(text), text);
  }
  for (const char* text : {"\x80", "\xC3", "\xC3(", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xE2\x82",
                           "\xF0\x9F\x94", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"}) {
    EXPECT_FALSE(IsUtf8(text));
    EXPECT_TRUE(IsUtf8(AsUtf8(text)));
    EXPECT_TRUE(IsUtf8(ValidUtf8(text)));
  }
  EXPECT_EQ(AsUtf8("\xE9t\xE9"), "\u00E9t\u00E9");
}

TEST(Utf8, BrokenCharacterIsOneSequence) {
  EXPECT_EQ(FirstUtf8Sequence("\xF0\x9F\x94z").length, 3U);
  EXPECT_EQ(FirstUtf8Sequence("\xF0\x9F\x94z").character, std::nullopt);
  EXPECT_EQ(FirstUtf8Sequence("\xED\xA0\x80").length, 1U);
  EXPECT_EQ(FirstUtf8Sequence("\U0001F50Bz").length, 4U);
  EXPECT_EQ(FirstUtf8Sequence("\U0001F50Bz").character, U'\U0001F50B');
  EXPECT_EQ(FirstUtf8Sequence("\u20AC").character, U'\u20AC');
  EXPECT_EQ(FirstUtf8Sequence("\u00E9").character, U'\u00E9');
}

TEST(Utf8, WhatIsNoneIsReplacedByteByByte) {
  const std::string mark = "\xEF\xBF\xBD";
  EXPECT_EQ(ValidUtf8("a\x80z"), "a" + mark + "z");
  EXPECT_EQ(ValidUtf8("\xC0\xAF"), mark + mark);                        // overlong
  EXPECT_EQ(ValidUtf8("\xE0\x80\x80"), mark + mark + mark);             // overlong
  EXPECT_EQ(ValidUtf8("\xF0\x8F\xBF\xBF"), mark + mark + mark + mark);  // overlong
  EXPECT_EQ(ValidUtf8("\xED\xA0\x80"), mark + mark + mark);             // a surrogate
  EXPECT_EQ(ValidUtf8("\xF4\x90\x80\x80"), mark + mark + mark + mark);  // above U+10FFFF
  EXPECT_EQ(ValidUtf8("\xF5\xFF"), mark + mark);
  EXPECT_EQ(ValidUtf8("\xE2\x82"), mark + mark);  // cut off at the end
  EXPECT_EQ(ValidUtf8("\xE2\x82z"), mark + mark + "z");
}

TEST(Utf8, BytesAreTheCharactersOfTheirNumbers) {
  EXPECT_EQ(BytesToUtf8("A\x7F\x80\xBF\xC0\xFF"), "A\x7F\xC2\x80\xC2\xBF\xC3\x80\xC3\xBF");
}

TEST(Utf8, WideTextsBecomeIt) {
  EXPECT_EQ(WideToUtf8(L"a\u00E9\u20AC\U0001F50Bz"), "a\u00E9\u20AC\U0001F50Bz");
  EXPECT_EQ(WideToUtf8({L"a\0z", 3}), std::string("a\0z", 3));
  const std::wstring pair{static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDD0B)};
  EXPECT_EQ(WideToUtf8(pair), "\U0001F50B");
  // A surrogate without the other is no character, whatever stands beside it.
  EXPECT_EQ(WideToUtf8(pair.substr(0, 1)), "\uFFFD");
  EXPECT_EQ(WideToUtf8(pair.substr(0, 1) + L"z"), "\uFFFDz");
  EXPECT_EQ(WideToUtf8(pair.substr(1) + pair), "\uFFFD\U0001F50B");
}

}  // namespace
}  // namespace norv::base
