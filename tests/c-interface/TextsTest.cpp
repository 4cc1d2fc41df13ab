// Texts on their way to a C host.
#include "c-interface/Texts.h"

#include <gtest/gtest.h>

#include <string>

namespace norv::test::c {
namespace {

using shared::battery::c_interface::BytesToUtf8;
using shared::battery::c_interface::ValidUtf8;

TEST(CInterfaceTexts, Utf8StaysAsItIs) {
  // The first and the last character of each length, and the neighbours of the surrogates.
  for (const std::string text :
       {"", "Balanced", "\x01\x7F", "\xC2\x80\xDF\xBF", "\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF",
        "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", "\xE1\x80\x80\xF1\xBF\xBF\xBF"}) {
    EXPECT_EQ(ValidUtf8(text), text);
  }
}

TEST(CInterfaceTexts, WhatIsNoUtf8IsReplacedByteByByte) {
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

TEST(CInterfaceTexts, BytesAreTheCharactersOfTheirNumbers) {
  EXPECT_EQ(BytesToUtf8("A\x7F\x80\xBF\xC0\xFF"), "A\x7F\xC2\x80\xC2\xBF\xC3\x80\xC3\xBF");
}

}  // namespace
}  // namespace norv::test::c
