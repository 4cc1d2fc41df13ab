#include "report/Verdict.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace norv::tool {
namespace {

std::string Class(int code) {
  const auto verdict = ExplainResult(code);
  return verdict ? verdict->verdictClass : "none";
}

std::string Qualifier(int code) {
  const auto verdict = ExplainResult(code);
  return verdict ? verdict->qualifier : "none";
}

TEST(Verdict, HighDigitIsTheClass) {
  EXPECT_EQ(Class(0x00), "OK");
  EXPECT_EQ(Class(0x05), "OK");
  EXPECT_EQ(Class(0x24), "CALIBRATE");
  EXPECT_EQ(Class(0x30), "WEAK");
  EXPECT_EQ(Class(0x49), "FAIL");
  EXPECT_EQ(Class(0x60), "NO_BATTERY");
  EXPECT_EQ(Class(0x74), "VERY_WEAK");
  EXPECT_EQ(Class(0x95), "UNKNOWN");
}

TEST(Verdict, OtherCodesHaveNoClass) {
  for (const int code : {-1, -64, 0x10, 0x50, 0x80, 0xA0, 0x100, 0x400, std::numeric_limits<int>::max(),
                         std::numeric_limits<int>::min()}) {
    EXPECT_EQ(Class(code), "none") << code;
    EXPECT_FALSE(IsFailure(code)) << code;
  }
}

TEST(Verdict, LowDigitIsTheQualifier) {
  EXPECT_EQ(Qualifier(0x00), "");
  EXPECT_EQ(Qualifier(0x05), "low ambient temperature");
  EXPECT_EQ(Qualifier(0x21), "no AC adapter was connected");
  EXPECT_EQ(Qualifier(0x32), "several batteries are installed");
  EXPECT_EQ(Qualifier(0x73), "temperature");
  EXPECT_EQ(Qualifier(0x74), "deep discharge");
  EXPECT_EQ(Qualifier(0x40), "bad cell");
  EXPECT_EQ(Qualifier(0x49), "disabled because of low voltage");
  EXPECT_EQ(Qualifier(0x60), "");
  EXPECT_EQ(Qualifier(0x90), "invalid battery data");
  EXPECT_EQ(Qualifier(0x95), "BIOS charge error");
}

TEST(Verdict, QualifierThatNoCodeHasIsSaidToBeUndefined) {
  for (const int code : {0x06, 0x25, 0x35, 0x4A, 0x61, 0x75, 0x96}) {
    EXPECT_EQ(Qualifier(code), "a qualifier that is not defined") << code;
  }
}

TEST(Verdict, FailureIsTheClassFail) {
  EXPECT_FALSE(IsFailure(63));
  EXPECT_TRUE(IsFailure(64));
  EXPECT_TRUE(IsFailure(79));
  EXPECT_FALSE(IsFailure(80));
}

}  // namespace
}  // namespace norv::tool
