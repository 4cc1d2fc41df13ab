// What machine files are taken, and how the others are refused.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "MachineText.h"

namespace norv::simulator {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

const fs::path kFolder = fs::path(NORV_BATTERY_TEST_DIR) / "unit" / "simulator";

constexpr const char* kTaken = "taken";

std::string Refusal(const std::string& json) {
  try {
    SimulatedMachine::FromText(json, "machine.json");
  } catch (const MachineFileError& refusal) {
    return refusal.what();
  }
  return kTaken;
}

std::string FileRefusal(const fs::path& path) {
  try {
    SimulatedMachine::FromFile(path.string());
  } catch (const MachineFileError& refusal) {
    return refusal.what();
  }
  return kTaken;
}

// One of machine-files.txt.
struct Case {
  std::string name;
  std::string text;
  std::string message;
};

// Those that are taken, or those that are refused.
std::vector<Case> Cases(bool taken) {
  std::vector<Case> cases;
  std::string name;
  std::string text;
  std::ifstream file(kFolder / "machine-files.txt");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("== ")) {
      name = line.substr(3);
      text.clear();
    } else if (!line.starts_with("=> ")) {
      text += line + "\n";
    } else if (const std::string message = line.substr(3); (message == kTaken) == taken) {
      cases.push_back({name, text, message});
    }
  }
  return cases;
}

TEST(MachineFile, RefusesEachBadFileWithPlaceAndExpectation) {
  const std::vector<Case> cases = Cases(false);
  ASSERT_FALSE(cases.empty());
  for (const auto& [name, text, message] : cases) {
    EXPECT_EQ(Refusal(text), "machine.json: " + message) << name;
  }
}

TEST(MachineFile, TakesEachGoodFile) {
  const std::vector<Case> cases = Cases(true);
  ASSERT_FALSE(cases.empty());
  for (const auto& [name, text, message] : cases) {
    EXPECT_EQ(Refusal(text), kTaken) << name;
  }
}

TEST(MachineFile, NamesTheFileThatItRefuses) {
  const fs::path file = fs::path(testing::TempDir()) / "refused-machine.json";
  std::ofstream(file) << R"({"description": 5})";
  EXPECT_EQ(FileRefusal(file), file.string() + ": description: expected a text, got 5");
  fs::remove(file);
}

TEST(MachineFile, SaysWhereATextIsNoJson) {
  EXPECT_EQ(
      Refusal("{\n  \"description\": \"A\",\n  \"slots\": [,]\n}"),
      "machine.json: line 3, column 13: expected JSON, got value - unexpected ','; expected '[', '{', or a literal");
  EXPECT_THAT(Refusal(""), StartsWith("machine.json: line 1, column 1: expected JSON, got va"));
  EXPECT_THAT(Refusal("{} x"), StartsWith("machine.json: line 1, column 4: expected JSON"));
  EXPECT_EQ(Refusal("\xEF\xBB\xBF{\"description\": \"A\"}"), kTaken);
  EXPECT_EQ(Refusal("{\"description\": 1e999}"),
            "machine.json: description: expected a number that a double holds, got number overflow parsing '1e999'");
  EXPECT_THAT(Refusal("{\"description\": \"\xC3\"}"), StartsWith("machine.json: line 1, column 19: expected JSON"));
}

TEST(MachineFile, RefusesAKeyThatStandsTwice) {
  EXPECT_EQ(Refusal(R"({"description": "A", "description": "B"})"),
            "machine.json: description: this key stands twice, expected it once");
  EXPECT_EQ(Refusal(R"({"slots": [null, {"battery": {"hex": "", "voltage": 1, "voltage": 2}}]})"),
            "machine.json: slots[1].battery.voltage: this key stands twice, expected it once");
}

TEST(MachineFile, RefusesNamesThatDifferInLetterCaseOnly) {
  EXPECT_EQ(
      Refusal(R"({"description": "A", "wmi": {"root\\wmi": {}, "\\\\.\\ROOT\\wmi": {}}})"),
      "machine.json: wmi[\"\\\\\\\\.\\\\ROOT\\\\wmi\"]: this namespace stands twice (letter case and a leading \\\\.\\ "
      "do not count), expected it once");
  EXPECT_EQ(Refusal(R"({"description": "A", "wmi": {"r": {"A": [], "a": []}}})"),
            "machine.json: wmi.r.a: this class stands twice (letter case does not count), expected it once");
  EXPECT_EQ(Refusal(R"({"description": "A", "wmi": {"r": {"A": [{"N": 1, "n": 2}]}}})"),
            "machine.json: wmi.r.A[0].n: this property stands twice (letter case does not count), expected it once");
}

TEST(MachineFile, RefusesTwoMessagesForOneCode) {
  EXPECT_EQ(Refusal(R"({"description": "A", "systemMessages": {"5": "x", "0x05": "y"}})"),
            "machine.json: systemMessages.0x05: there are two messages for code 5, expected one");
}

TEST(MachineFile, RefusesADayThatNoCalendarHas) {
  EXPECT_EQ(Refusal(R"({"description": "A", "clock": {"now": "2023-02-29T00:00:00Z"}})"),
            "machine.json: clock.now: expected a time \"2024-06-01T12:00:00Z\" from the year 1970 on, got "
            "\"2023-02-29T00:00:00Z\"");
}

TEST(MachineFile, RefusesWhatIsNoFile) {
  const std::string missing = (kFolder / "no-such-machine.json").string();
  EXPECT_EQ(FileRefusal(missing), missing + ": expected a machine file, cannot open it: No such file or directory");
  const std::string folder = kFolder.string();
  EXPECT_THAT(FileRefusal(folder), StartsWith(folder + ": expected a machine file, cannot "));
}

TEST(MachineFile, RefusesAFileThatIsTooLarge) {
  const fs::path file = fs::path(testing::TempDir()) / "large-machine.json";
  std::ofstream(file).close();
  fs::resize_file(file, (std::uintmax_t{64} << 20U) + 1);
  EXPECT_EQ(FileRefusal(file.string()), file.string() + ": expected a machine file of no more than 64 MiB");
  fs::remove(file);
}

// The time of the processor that reading `text` takes: of several runs the shortest, which others disturbed least.
double ReadingTime(const std::string& text) {
  std::clock_t shortest = std::numeric_limits<std::clock_t>::max();
  for (int run = 0; run < 3; ++run) {
    const std::clock_t begin = std::clock();
    EXPECT_EQ(Refusal(text), kTaken);
    shortest = std::min(shortest, std::clock() - begin);
  }
  return static_cast<double>(shortest) / CLOCKS_PER_SEC;
}

std::string Repeated(const char* before, const char* entry, const char* after, int count) {
  std::string text = std::string(R"({"description": "A", )") + before;
  for (int number = 0; number < count; ++number) {
    std::string one = entry;
    one.replace(one.find('#'), 1, std::to_string(number + 1));
    text += (number > 0 ? "," : "") + one;
  }
  return text + after + "}";
}

TEST(MachineFile, TakesTimeInProportionToItsSize) {
  struct List {
    const char* before;
    const char* entry;
    const char* after;
  };
  for (const List& list : {
           List{R"("answers": [)", R"({"operation": "FormatSystemMessage", "argument": "#", "result": "m"})", "]"},
           List{R"("answers": [)", R"({"operation": "Now", "result": #})", "]"},
           List{R"("faults": [)", R"({"operation": "Now", "call": #, "throws": "int"})", "]"},
           List{R"("systemMessages": {)", R"("#": "m")", "}"},
           List{R"("wmi": {)", R"("n#": {})", "}"},
           List{R"("wmi": {"n": {)", R"("C#": [])", "}}"},
           List{R"("wmi": {"n": {"C": [)", R"({"P": #})", "]}}"},
           List{R"("wmi": {"n": {"C": [{)", R"("P#": 1)", "}]}}"},
       }) {
    const double few = ReadingTime(Repeated(list.before, list.entry, list.after, 2000));
    const double many = ReadingTime(Repeated(list.before, list.entry, list.after, 20000));
    EXPECT_LT(many, 30 * few + 0.03) << list.before << list.entry;  // ten times as long, or a hundred if quadratic
  }
}

TEST(MachineFile, ShowsOnlyTheStartOfALongText) {
  const std::string refusal = Refusal("{\"description\": \"A\", \"modulePath\": 1, \"$schema\": \"" +
                                      std::string(5000, 'x') + "\", \"slots\": \"" + std::string(5000, 'y') + "\"}");
  EXPECT_EQ(refusal,
            "machine.json: slots: expected an array of at most 2 entries, got \"" + std::string(59, 'y') + "...");
}

TEST(MachineFile, RefusesDeepNestingWithoutHarm) {
  const std::string message = ": expected no more than 64 arrays and objects within each other";
  EXPECT_THAT(Refusal(std::string(100000, '[')), AllOf(StartsWith("machine.json: [0][0]"), EndsWith("[0]" + message)));
  EXPECT_THAT(Refusal("{\"description\": " + std::string(20000, '[') + std::string(20000, ']') + "}"),
              AllOf(StartsWith("machine.json: description[0]"), EndsWith("[0]" + message)));
}

// Whatever single character of a file is lost or changed, it is taken or refused properly.
TEST(MachineFile, SurvivesEveryDamagedCharacter) {
  const std::string sample = SampleText("channel-failure");
  std::size_t refused = 0;
  for (std::size_t i = 0; i < sample.size(); ++i) {
    std::string shorter = sample;
    shorter.erase(i, 1);
    std::string changed = sample;
    changed[i] = static_cast<char>(changed[i] ^ 0x15);
    for (const std::string& damaged : {shorter, changed}) {
      const std::string refusal = Refusal(damaged);
      if (refusal != kTaken) {
        ++refused;
        EXPECT_THAT(refusal, StartsWith("machine.json: "));
        EXPECT_THAT(refusal, HasSubstr("expected "));
      }
    }
  }
  EXPECT_GT(refused, sample.size() / 2);
}

}  // namespace
}  // namespace norv::simulator
