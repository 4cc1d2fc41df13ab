// The writer of decoded rows, against the reader of the JSON library that everything else is written with.
#include "decode/JsonSink.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <random>
#include <string>

#include "base/Utf8.h"
#include "output/EscapeText.h"

namespace norv::tool {
namespace {

using Json = nlohmann::json;

template <typename Write>
Json Written(Write write) {
  OutputBuffer output;
  JsonSink sink(output);
  sink.BeginRow();
  write(sink);
  sink.EndRow();
  const std::string text(output.View());
  EXPECT_TRUE(text.ends_with("}\n")) << text;
  EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
  EXPECT_EQ(EscapeControls(text.substr(0, text.size() - 1)) + '\n', text);
  return Json::parse(text);
}

TEST(JsonSink, NestsObjects) {
  const Json row = Written([](JsonSink& sink) {
    sink.Open("outer");
    sink.Number("number", -1);
    sink.Open("inner");
    sink.Boolean("yes", true);
    sink.Boolean("no", false);
    sink.Close();
    sink.Numbers("numbers", std::array{1, 2, 3});
    sink.Close();
    sink.Null("nothing");
  });
  EXPECT_EQ(row, Json::parse(R"({"outer": {"number": -1, "inner": {"yes": true, "no": false}, "numbers": [1, 2, 3]},
                                 "nothing": null})"));
}

TEST(JsonSink, Numbers) {
  const Json row = Written([](JsonSink& sink) {
    sink.Number("least", std::numeric_limits<std::int64_t>::min());
    sink.Number("most", std::numeric_limits<std::uint64_t>::max());
    sink.Number("none", std::optional<int>());
    sink.Number("some", std::optional(7));
  });
  EXPECT_EQ(row["least"], std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(row["most"], std::numeric_limits<std::uint64_t>::max());
  EXPECT_TRUE(row["none"].is_null());
  EXPECT_EQ(row["some"], 7);
}

TEST(JsonSink, NumbersOfEveryLength) {
  for (std::int64_t number = -20000; number <= 120000; ++number) {
    OutputBuffer output;
    JsonSink(output).Number("n", number);
    ASSERT_EQ(output.View(), "\"n\":" + std::to_string(number) + ",");
  }
}

TEST(JsonSink, PercentagesHaveUpToThreeDecimals) {
  const auto written = [](std::optional<float> percentage) {
    OutputBuffer output;
    JsonSink(output).Percentage("p", percentage);
    return std::string(output.View());
  };
  EXPECT_EQ(written(0.0F), R"("p":0.0,)");
  EXPECT_EQ(written(100.0F), R"("p":100.0,)");
  EXPECT_EQ(written(99.966F), R"("p":99.966,)");
  EXPECT_EQ(written(0.033F), R"("p":0.033,)");
  EXPECT_EQ(written(12.5F), R"("p":12.5,)");
  EXPECT_EQ(written(0.25F), R"("p":0.25,)");
  EXPECT_EQ(written(std::nullopt), R"("p":null,)");
  EXPECT_EQ(written(2147483.5F), R"("p":2147483.5,)");
}

TEST(JsonSink, EveryByteOfATextAtEveryPlace) {
  for (int number = 1; number < 256; ++number) {
    for (std::size_t place = 0; place < 17; ++place) {
      std::string text(17, 'a');
      text[place] = static_cast<char>(number);
      const Json row = Written([&text](JsonSink& sink) { sink.Bytes("text", text); });
      ASSERT_EQ(row["text"], base::BytesToUtf8(text)) << number << ' ' << place;
    }
  }
}

TEST(JsonSink, RandomTexts) {
  std::mt19937 random(1);
  for (int run = 0; run < 20000; ++run) {
    std::string bytes(random() % 40, '\0');
    for (char& byte : bytes) {
      byte = static_cast<char>(random() % (run % 2 == 0 ? 256 : 128));
    }
    const std::string text = base::AsUtf8(bytes);
    const Json row = Written([&](JsonSink& sink) {
      sink.Bytes("bytes", bytes);
      sink.Utf8("text", std::string_view(text));
    });
    ASSERT_EQ(row["bytes"], base::BytesToUtf8(bytes));
    ASSERT_EQ(row["text"], text);
  }
}

TEST(JsonSink, Failures) {
  const shared::error::Error error(shared::error::ErrorCategory::Value, -1, "a \"message\"", "int", "f\xFF");
  const Json row = Written([&error](JsonSink& sink) {
    sink.Failure("error", &error);
    sink.Failure("none", nullptr);
  });
  EXPECT_EQ(
      row["error"],
      Json({{"category", 5}, {"code", -1}, {"message", "a \"message\""}, {"type", "int"}, {"function", "f\u00FF"}}));
  EXPECT_TRUE(row["none"].is_null());
}

}  // namespace
}  // namespace norv::tool
