// The library matches its patterns with code of its own. These tests hold that code against the patterns themselves, as
// the standard library's regular expressions (ECMAScript) understand them.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <optional>
#include <random>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "record/Characters.h"
#include "record/CtNumber.h"
#include "record/DateTime.h"
#include "record/ManufacturerText.h"
#include "record/TrailingDate.h"

namespace norv::test {
namespace {

using namespace shared::battery::record;

// A pattern as the firmware's document has it, and what the library says of a text in a form that can be compared.
struct Subject {
  const char* name;
  std::function<std::string(const std::string&)> expected;
  std::function<std::string(const std::string&)> actual;
  std::vector<std::string> valid;
  std::string alphabet;  // of the exhaustive short texts
};

void PrintTo(const Subject& subject, std::ostream* stream) {
  *stream << subject.name;
}

std::string Whole(const std::string& text, const std::regex& pattern) {
  return std::regex_match(text, pattern) ? "match" : "none";
}

std::string Answer(bool matches) {
  return matches ? "match" : "none";
}

const std::regex kDeviceNamePattern("[a-zA-Z0-9]+");
const std::regex kCtNumberPattern("^6[a-zA-Z0-9]{13}$");
const std::regex kDateTimePattern(R"(\d{4}-\d{2}-\d{2}T\d{2}:\d{2}:\d{2}(\+|\-)\d{2}:\d{2})");
const std::regex kYearFirstPattern(R"((19|20\d\d)[- /.](0[1-9]|1[012])[- /.](0[1-9]|[12][0-9]|3[01])$)");
const std::regex kMonthFirstPattern(R"((0[1-9]|1[012])[-/ .](0[1-9]|[12][0-9]|3[01])[- /.](19|20\d\d)$)");
const std::array<std::regex, 6> kShapePatterns{
    std::regex("[a-zA-Z0-9]{3}-[a-zA-Z0-9]{2}-[a-zA-Z0-9]{2}(-A)"),
    std::regex("[a-zA-Z0-9]{3}-[a-zA-Z0-9]{2}-[a-zA-Z0-9]{1}(-A)"),
    std::regex("[a-zA-Z0-9]{2}-[a-zA-Z0-9]{2}-[a-zA-Z0-9]{2}(-A)"),
    std::regex("[a-zA-Z0-9]{3}-[a-zA-Z0-9]{2}(-A)"),
    std::regex("[a-zA-Z0-9]{2}-[a-zA-Z0-9]{2}(-A)"),
    std::regex("[a-zA-Z0-9]{5}(-A)"),
};

// The ranges that a date-time text must keep besides its pattern.
bool RangesHold(const std::string& text) {
  const auto part = [&text](std::size_t position) { return std::stoi(text.substr(position, 2)); };
  return part(5) >= 1 && part(5) <= 12 && part(8) >= 1 && part(8) <= 31 && part(11) <= 23 && part(14) <= 59 &&
         part(17) <= 60;
}

std::string TrailingDateByPattern(const std::string& text) {
  std::smatch groups;
  if (std::regex_search(text, groups, kYearFirstPattern)) {
    return groups.str(1) + "|" + std::to_string(std::stoi(groups.str(2))) + "|" +
           std::to_string(std::stoi(groups.str(3)));
  }
  if (std::regex_search(text, groups, kMonthFirstPattern)) {
    return groups.str(3) + "|" + std::to_string(std::stoi(groups.str(1))) + "|" +
           std::to_string(std::stoi(groups.str(2)));
  }
  return "none";
}

std::string TrailingDateByCode(const std::string& text) {
  const auto date = FindTrailingDate(text);
  return date ? std::to_string(date->year) + "|" + std::to_string(date->month) + "|" + std::to_string(date->day)
              : "none";
}

// What the decoders say of a manufacturer text, all in one.
std::string DecodedByCode(std::string_view text) {
  const auto calibration = CalibrationType(text);
  return std::string(WarrantyType(text)) + " " + DesignCycleCount(text) + " " + PackSupplier(text) + " " +
         CellSupplier(text) + " " + (calibration.empty() ? "none" : std::string(calibration)) + " " +
         std::to_string(OverCurrentProtection(text, 1000));
}

// The same with the shape found by the patterns: the codes at its positions, put into a text of the first shape, decode
// the same. Calibration type and over-current limit depend on the shape and are worked out here.
std::string DecodedByPattern(const std::string& text) {
  struct Positions {
    std::size_t warranty, cycles, pack, cell;
    std::optional<std::size_t> calibration, overCurrent;
  };
  static const std::array<Positions, 6> kPositions{{{0, 2, 4, 5, 2, 7},
                                                    {0, 2, 4, 5, 2, 7},
                                                    {0, 1, 3, 4, std::nullopt, 6},
                                                    {0, 2, 4, 5, 2, std::nullopt},
                                                    {0, 1, 3, 4, std::nullopt, std::nullopt},
                                                    {0, 2, 3, 4, 2, std::nullopt}}};
  std::string same = "000-00-00-A";
  std::string calibration = "none";
  int code = 0;
  for (std::size_t shape = 0; shape < kShapePatterns.size(); ++shape) {
    if (std::regex_match(text, kShapePatterns[shape])) {
      const Positions& at = kPositions[shape];
      same[0] = text[at.warranty];
      same[2] = text[at.cycles];
      same[4] = text[at.pack];
      same[5] = text[at.cell];
      calibration = at.calibration ? std::string(1, text[*at.calibration]) : "none";
      code = at.overCurrent ? 10 * (text[*at.overCurrent] - '0') + (text[*at.overCurrent + 1] - '0') : 0;
    }
  }
  const int limit = code < 0 || code >= 220 ? 0
                    : code < 200            ? (code / 100 + 1) * 1000
                                            : static_cast<int>((code / 20.0 - 10.0) * 1000);
  return std::string(WarrantyType(same)) + " " + DesignCycleCount(same) + " " + PackSupplier(same) + " " +
         CellSupplier(same) + " " + calibration + " " + std::to_string(limit);
}

const std::vector<Subject>& Subjects() {
  static const std::vector<Subject> subjects{
      {"DeviceName",
       [](const std::string& text) { return Whole(text, kDeviceNamePattern); },
       [](const std::string& text) { return Answer(!text.empty() && AreLettersOrDigits(text)); },
       {"A", "aZ09", "BAT0001"},
       "aZ09- /.@[`{"},
      {"CtNumber",
       [](const std::string& text) { return Whole(text, kCtNumberPattern); },
       [](const std::string& text) { return Answer(IsCtNumber(text)); },
       {"6ABCDEFGHIJKLM", "60000000000000", "6zaZA09123aaaa"},
       "6aZ0 -"},
      {"DateTime",
       [](const std::string& text) { return Answer(Whole(text, kDateTimePattern) == "match" && RangesHold(text)); },
       [](const std::string& text) { return Answer(IsDateTimeText(text)); },
       {"2021-05-06T00:00:00+00:00", "1980-12-31T23:59:60-11:30", "0000-01-01T09:09:09+99:99"},
       "09-T:+ "},
      {"TrailingDate",
       TrailingDateByPattern,
       TrailingDateByCode,
       {"2019-05-06", "SN00012019/12/31", "19-01-01", "05-06-2019", "12.31.19", "2020 10 20", "10/20/2099",
        "20199-05-06", "19-05-2019", "2019-05-19", "1999-05-06", "19-19-05-06"},
       "0129- /."},
      {"ManufacturerShape",
       DecodedByPattern,
       DecodedByCode,
       {"123-45-67-A", "123-45-6-A", "21-63-12-A", "123-45-A", "12-34-A", "ABCDE-A", "123-45-BN-A", "23c-9B-zz-A"},
       "1aA- "},
  };
  return subjects;
}

class Patterns : public testing::TestWithParam<Subject> {
 protected:
  // Counts instead of asserting on each of millions of texts; the first few differences are shown.
  void Compare(const std::string& text) {
    ++compared_;
    const std::string expected = GetParam().expected(text);
    const std::string actual = GetParam().actual(text);
    if (expected != actual && ++different_ <= 5) {
      ADD_FAILURE() << GetParam().name << " \"" << testing::PrintToString(text) << "\": " << actual << " instead of "
                    << expected;
    }
  }

  std::size_t compared_ = 0;
  std::size_t different_ = 0;
};

TEST_P(Patterns, AgreeOnAllShortTexts) {
  std::vector<std::string> texts{""};
  for (int length = 0; length <= 4; ++length) {
    std::vector<std::string> longer;
    for (const std::string& text : texts) {
      Compare(text);
      for (const char character : GetParam().alphabet) {
        longer.push_back(text + character);
      }
    }
    texts = std::move(longer);
  }
  EXPECT_EQ(different_, 0U);
  EXPECT_GT(compared_, 600U);
}

TEST_P(Patterns, AgreeOnAllChangesOfOneCharacter) {
  for (const std::string& valid : GetParam().valid) {
    Compare(valid);
    for (std::size_t position = 0; position <= valid.size(); ++position) {
      if (position < valid.size()) {
        Compare(std::string(valid).erase(position, 1));
      }
      for (int value = 0; value < 256; ++value) {
        const char character = static_cast<char>(value);
        Compare(std::string(valid).insert(position, 1, character));
        if (position < valid.size()) {
          std::string changed = valid;
          changed[position] = character;
          Compare(changed);
        }
      }
    }
  }
  EXPECT_EQ(different_, 0U);
}

TEST_P(Patterns, AgreeOnRandomTexts) {
  std::mt19937 random(20210506);
  const auto below = [&random](std::size_t bound) -> std::size_t { return random() % bound; };
  constexpr std::string_view kCharacters = "0123456789ABCZabcz-/. T:+6912";
  for (int round = 0; round < 40000; ++round) {
    // Half of them made of parts of valid texts, so that many of them match.
    std::string text;
    if (round % 2 == 0) {
      const auto& valid = GetParam().valid;
      const std::string& first = valid[below(valid.size())];
      const std::string& second = valid[below(valid.size())];
      text = first.substr(0, below(first.size() + 1)) + second.substr(below(second.size() + 1));
      if (!text.empty() && below(2) == 0) {
        text[below(text.size())] = kCharacters[below(kCharacters.size())];
      }
    } else {
      for (std::size_t length = below(30); length > 0; --length) {
        text += below(20) == 0 ? static_cast<char>(below(256)) : kCharacters[below(kCharacters.size())];
      }
    }
    Compare(text);
  }
  EXPECT_EQ(different_, 0U);
}

INSTANTIATE_TEST_SUITE_P(All, Patterns, testing::ValuesIn(Subjects()),
                         [](const auto& subject) { return std::string(subject.param.name); });

TEST(ManufacturerShapes, NoTextHasTwo) {
  for (const Subject& subject : Subjects()) {
    for (const std::string& text : subject.valid) {
      int shapes = 0;
      for (const std::regex& pattern : kShapePatterns) {
        shapes += std::regex_match(text, pattern) ? 1 : 0;
      }
      EXPECT_LE(shapes, 1) << text;
    }
  }
}

}  // namespace
}  // namespace norv::test
