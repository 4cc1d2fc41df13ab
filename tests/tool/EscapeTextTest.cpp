#include "EscapeText.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace norv::tool {
namespace {

TEST(EscapeText, KeepsPrintableAscii) {
  EXPECT_EQ(EscapeText("HT03XL-!~ a"), "HT03XL-!~ a");
  EXPECT_EQ(EscapeText(""), "");
}

TEST(EscapeText, ShowsOtherBytesAsNumbers) {
  EXPECT_EQ(EscapeText("a\x1F\x7F\x80\xFF\n"), "a\\x1F\\x7F\\x80\\xFF\\x0A");
}

TEST(EscapeText, ShowsBlanksAtTheEnds) {
  EXPECT_EQ(EscapeText(" a b "), "\\x20a b\\x20");
  EXPECT_EQ(EscapeText(" "), "\\x20");
  EXPECT_EQ(EscapeText("   "), "\\x20 \\x20");
}

TEST(EscapeText, GivesNoTextTwice) {
  std::set<std::string> texts;
  for (int byte = 0; byte < 256; ++byte) {
    texts.insert(EscapeText(std::string(1, static_cast<char>(byte))));
  }
  EXPECT_EQ(texts.size(), 256U);
  EXPECT_NE(EscapeText("\\x41"), EscapeText("A"));
  EXPECT_EQ(EscapeText("\\x41"), "\\x5Cx41");
}

TEST(EscapeBytes, LeavesBlanksAtTheEnds) {
  EXPECT_EQ(EscapeBytes(" a\\\n "), " a\\x5C\\x0A ");
}

TEST(BytesToUtf8, TakesBytesForCodePoints) {
  EXPECT_EQ(BytesToUtf8("A\x7F"), "A\x7F");
  EXPECT_EQ(BytesToUtf8("\x80\xBF\xC0\xFF"), "\xC2\x80\xC2\xBF\xC3\x80\xC3\xBF");
}

TEST(WithoutLineBreak, CutsTheLastOneOnly) {
  EXPECT_EQ(WithoutLineBreak("Access is denied.\r\n"), "Access is denied.");
  EXPECT_EQ(WithoutLineBreak("a\r\nb"), "a\r\nb");
  EXPECT_EQ(WithoutLineBreak("\r\n"), "");
}

}  // namespace
}  // namespace norv::tool
