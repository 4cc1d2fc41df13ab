// The project's own JSON, held against the library that most programs use.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <string>

#include "base/Utf8.h"
#include "json/Describe.h"
#include "json/Parse.h"
#include "json/Write.h"

namespace norv::json {

namespace {

using Other = nlohmann::ordered_json;
using testing::StartsWith;

std::string Refusal(std::string_view text) {
  try {
    Parse(text);
  } catch (const ParseError& failure) {
    return failure.what();
  }
  return "taken";
}

// As the other library writes it, but for the control characters that only this one escapes.
std::string WrittenByOther(const std::string& text) {
  return Other(text).dump(-1, ' ', false, Other::error_handler_t::replace);
}

std::string Nested(std::size_t depth) {
  return std::string(depth, '[') + std::string(depth, ']');
}

TEST(Json, WritesWhatItReads) {
  const std::string text =
      R"({"a":[1,-2,3.5,true,false,null,"x",[],{}],"z":{"y":"\"\\\b\f\n\r\t\u0000\u001f","b":18446744073709551615}})";
  EXPECT_EQ(Write(Parse(text)), text);
  EXPECT_EQ(Write(Parse(text)), Other::parse(text).dump());
  EXPECT_EQ(Write(Parse(text), 2), Other::parse(text).dump(2));
}

TEST(Json, WritesPercentagesAsTheOtherLibraryDoes) {
  for (int thousandths = 0; thousandths <= 6'553'500; thousandths += 101) {
    const double percentage = thousandths / 1000.0;
    ASSERT_EQ(Write(percentage), Other(percentage).dump());
  }
}

TEST(Json, WritesRealNumbersAsTheOtherLibraryDoes) {
  for (const double number :
       {0.0, -0.0, 1.0, 0.1, 1e-4, 9.9e-5, 1e-5, 999999999999999.0, 1e15, 1.5e300, 5e-324, 1e22}) {
    EXPECT_EQ(Write(number), Other(number).dump());
    EXPECT_EQ(Write(-number), Other(-number).dump());
  }
  EXPECT_EQ(Write(std::numeric_limits<double>::quiet_NaN()), "null");
}

TEST(Json, WritesAnyBytesAsTheOtherLibraryDoes) {
  std::mt19937 random(1);
  constexpr std::string_view kBytes =
      "aZ\xC2\xA0\xC3\xBF\xE0\xA4\x80\xE2\x82\xAC\xED\x9F\xEF\xBF\xF0\x9F\x98\x8F\xF4\xF5\xC0\xFF";
  for (int round = 0; round < 20'000; ++round) {
    std::string text;
    for (int i = 0; i < 8; ++i) {
      text += kBytes[random() % kBytes.size()];
    }
    // A continuation byte after 0xC2 may make a control character, which the other library leaves as it is.
    if (Write(text).find("\\u") == std::string::npos) {
      ASSERT_EQ(Write(text), WrittenByOther(text));
    }
    ASSERT_EQ(QuoteInAscii(text), Other(text).dump(-1, ' ', true, Other::error_handler_t::replace));
    ASSERT_EQ(base::IsUtf8(text), WrittenByOther(text).find("\xEF\xBF\xBD") == std::string::npos);
  }
}

TEST(Json, EscapesControlCharactersThatTerminalsObey) {
  EXPECT_EQ(Write("\x1B[2J"), R"("\u001b[2J")");
  EXPECT_EQ(Write("~\x7F\xC2\x80\xC2\x9B\xC2\x9F\xC2\xA0"), "\"~\\u007f\\u0080\\u009b\\u009f\xC2\xA0\"");
  EXPECT_EQ(Write(Object{{"\x7F", 1}}), R"({"\u007f":1})");
}

TEST(Json, KeepsTheOrderOfKeysAndFindsEachOfMany) {
  Object object;
  for (const int key : {7, 3, 9}) {
    object[std::to_string(key)] = key;
  }
  EXPECT_EQ(Write(object), R"({"7":7,"3":3,"9":9})");
  for (int key = 0; key < 1000; ++key) {
    object[std::to_string(key)] = key;
  }
  EXPECT_EQ(object.end() - object.begin(), 1000);
  for (int key = 0; key < 1000; ++key) {
    EXPECT_EQ(*object.Find(std::to_string(key)), key);
  }
  EXPECT_EQ(object.Find("1000"), nullptr);
}

TEST(Json, EqualNumbersAreEqualValues) {
  EXPECT_EQ(Value(std::int8_t{5}), Value(std::uint64_t{5}));
  EXPECT_EQ(Parse("5"), 5);
  EXPECT_EQ(Parse("-5"), -5);
  EXPECT_NE(Parse("1"), true);
}

TEST(Json, AnswersNullForWhatIsNotThere) {
  const Value value = Parse(R"({"a": [{"b": 1}]})");
  EXPECT_EQ(value["a"][0]["b"], 1);
  EXPECT_TRUE(value["a"][1]["b"].IsNull());
  EXPECT_TRUE(value["x"]["y"].IsNull());
}

TEST(Json, RefusesDeepNestingWithoutHarm) {
  EXPECT_EQ(Write(Parse(Nested(kDeepest))), Nested(kDeepest));
  EXPECT_THAT(Refusal(Nested(kDeepest + 1)),
              testing::EndsWith("[0]: expected no more than 64 arrays and objects within each other"));
  EXPECT_EQ(Refusal(std::string(1'000'000, '[')), Refusal(Nested(kDeepest + 1)));
  EXPECT_THAT(Refusal("{\"a\":" + Nested(kDeepest)), StartsWith("a[0][0]"));
}

TEST(Json, RefusesAKeyThatStandsTwice) {
  EXPECT_EQ(Refusal(R"({"a": [0, {"b c": 1, "b c": 2}]})"), R"(a[1]["b c"]: this key stands twice, expected it once)");
}

TEST(Json, SaysWhereATextIsNoJson) {
  EXPECT_THAT(Refusal("{\n  \"a\": [,]}"), StartsWith("line 2, column 9: expected JSON, got value - unexpected ','"));
  EXPECT_EQ(Refusal("[1, 1e999]"), "[1]: expected a number that a double holds, got number overflow parsing '1e999'");
  EXPECT_EQ(Refusal("1e999"), "expected a number that a double holds, got number overflow parsing '1e999'");
  EXPECT_LT(Refusal("\"" + std::string(100'000, 'x') + "\n\"").size(), 300U);
}

TEST(Json, ReadsValuesThatStandOneAfterAnother) {
  std::istringstream input(" {\"a\": 1}[2]\n\n null {\n,");
  EXPECT_EQ(*ParseNext(input), (Object{{"a", 1}}));
  EXPECT_EQ(*ParseNext(input), Array{2});
  EXPECT_TRUE(ParseNext(input)->IsNull());
  EXPECT_THROW(
      try { ParseNext(input); } catch (const ParseError& failure) {
        EXPECT_THAT(failure.what(), StartsWith("line 2, column 1: expected JSON"));
        throw;
      },
      ParseError);
}

TEST(Json, FindsTheEndOfAStream) {
  std::istringstream input("{} \n");
  EXPECT_TRUE(ParseNext(input).has_value());
  EXPECT_FALSE(ParseNext(input).has_value());
  EXPECT_FALSE(ParseNext(input).has_value());
}

// A stream of one text that does not end.
class EndlessText : public std::streambuf {
 protected:
  int_type underflow() override { return next_; }
  int_type uflow() override { return std::exchange(next_, 'x'); }

 private:
  int_type next_ = '"';
};

TEST(Json, RefusesAValueThatIsTooLong) {
  EndlessText text;
  std::istream input(&text);
  EXPECT_THROW(ParseNext(input), ParseError);
}

TEST(Json, DescribesValuesInAFewWords) {
  EXPECT_EQ(Describe(Parse("[1]")), "an array of 1 entry");
  EXPECT_EQ(Describe(Parse("[1, 2]")), "an array of 2 entries");
  EXPECT_EQ(Describe(Object()), "an object");
  EXPECT_EQ(Describe("\xC3\xA9\x7F\xF0\x9F\x98\x80"), R"("\u00e9\u007f\ud83d\ude00")");
  EXPECT_EQ(Describe(std::string(100, 'x')), '"' + std::string(59, 'x') + "...");
}

}  // namespace

}  // namespace norv::json
