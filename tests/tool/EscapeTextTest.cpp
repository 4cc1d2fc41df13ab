#include "output/EscapeText.h"

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

TEST(EscapeControls, LeavesEverythingElse) {
  EXPECT_EQ(EscapeControls("a\\ \u00A0\u00E9\u20AC\U0001F50B"), "a\\ \u00A0\u00E9\u20AC\U0001F50B");
  EXPECT_EQ(EscapeControls("\x01\x1F\x7F\u0080\u009F"), "\\x01\\x1F\\x7F\\x80\\x9F");
}

TEST(Quote, TellsHowLongALongTextIs) {
  EXPECT_EQ(Quote("a\n"), "'a\\x0A'");
  EXPECT_EQ(Quote(std::string(200, 'a')), "'" + std::string(200, 'a') + "'");
  EXPECT_EQ(Quote(std::string(1000, 'a')), "'" + std::string(200, 'a') + "...' (1000 characters)");
}

TEST(PrintableLine, LeavesPrintableLines) {
  EXPECT_EQ(PrintableLine("a\\x0A b"), "a\\x0A b");
  EXPECT_EQ(PrintableLine("a\n\x1B\u00E9"), "a\\x0A\\x1B\\xC3\\xA9");
}

TEST(PrintableLine, LeavesOutTheMiddle) {
  const std::string line = PrintableLine("start" + std::string(1000000, 'a') + "end");
  EXPECT_TRUE(line.starts_with("start"));
  EXPECT_TRUE(line.ends_with("end"));
  EXPECT_LT(line.size(), 3100U);
}

TEST(WithoutLineBreak, CutsTheLastOneOnly) {
  EXPECT_EQ(WithoutLineBreak("Access is denied.\r\n"), "Access is denied.");
  EXPECT_EQ(WithoutLineBreak("a\r\nb"), "a\r\nb");
  EXPECT_EQ(WithoutLineBreak("\r\n"), "");
}

}  // namespace
}  // namespace norv::tool
