// Every fault that a machine file can describe meets every command that reads a machine: the command says what is
// wrong, ends with one of its exit statuses and leaves no folder behind. Which faults there are is taken from the
// schema.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "json/Parse.h"
#include "json/Write.h"
#include "norv/simulator/SimulatedMachine.h"

namespace norv::tool {

namespace {

namespace fs = std::filesystem;
using json::Array;
using json::Object;
using json::Value;

struct Command {
  std::vector<const char*> arguments;
  std::vector<int> statuses;  // as docs/tool.md has them
};

const std::vector<Command> kCommands{
    {{"report", "--cell-swell", "--test"}, {0, 1, 2, 3, 4}},
    {{"report", "--format", "json"}, {0, 1, 2}},
    {{"record", "--cell-swell", "--test"}, {0, 1, 2}},
    {{"record", "--redact", "--key", "k"}, {0, 1, 2}},
    {{"watch", "--count", "1"}, {0, 2}},
    {{"encode"}, {0, 2}},
};

Value SchemaOf(const char* definition) {
  std::ifstream file(NORV_BATTERY_SCHEMA, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  return json::Parse(text)["$defs"][definition];
}

Array Items(const Value& value) {
  const auto* const items = value.As<Array>();
  return items != nullptr ? *items : Array();
}

Object Fault(const Value& operation, const char* key, const Value& value) {
  return {{"operation", operation}, {key, value}};
}

// Every way in which a fault of the schema's can be.
Array AllFaults() {
  const Value variants = SchemaOf("fault")["oneOf"];
  Array faults;
  for (const Value& variant : Items(variants)) {
    const Object& properties = *variant["properties"].As<Object>();
    for (const Value& operation : Items(variant["properties"]["operation"]["enum"])) {
      for (const Value& thrown : Items(variant["properties"]["throws"]["enum"])) {
        faults.emplace_back(Fault(operation, "throws", thrown));
      }
      for (const char* code : {"status", "returnCode", "code"}) {
        if (properties.Find(code) != nullptr) {
          faults.emplace_back(Fault(operation, code, 5));
        }
      }
      if (properties.Find("fails") != nullptr) {
        faults.emplace_back(Fault(operation, "fails", true));
      }
    }
  }
  return faults;
}

// Answers that throw, of the operations that the tool asks for itself, and of those that it asked for in earlier
// versions.
Array AllThrowingAnswers() {
  const Object operations[] = {
      {{"operation", "Now"}},
      {{"operation", "DescribeSlot"}, {"argument", "0"}},
      {{"operation", "BatterySource"}},
      {{"operation", "DriverStateOfCharge"}, {"argument", "0"}},
      {{"operation", "SendBiosCommand"}, {"argument", "1,7,1 slot 0"}},
  };
  Array answers;
  for (const Value& thrown : Items(SchemaOf("thrownKind")["enum"])) {
    for (Object answer : operations) {
      answer["throws"] = thrown;
      answers.emplace_back(std::move(answer));
    }
  }
  return answers;
}

class FaultsTest : public testing::Test {
 protected:
  ~FaultsTest() override { fs::remove(file_); }

  // Runs every command on the sample machine with `entry` in its list `key`.
  void RunCommandsOn(const char* key, const Value& entry) {
    Value machine = json::Parse(simulator::SampleText("two-batteries"));
    (*machine.As<Object>())["testProgram"] = Object{{"version", "3.1.0.8"}, {"status", 2}};  // that takes no time
    (*machine.As<Object>())[key] = Array{entry};
    std::ofstream(file_, std::ios::binary) << json::Write(machine);
    for (const Command& command : kCommands) {
      SCOPED_TRACE(json::Write(entry) + ", " + command.arguments.front());
      Run(command);
    }
  }

 private:
  void Run(const Command& command) {
    const std::string file = file_.string();
    std::vector<const char*> arguments{"norv-battery"};
    arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
    arguments.insert(arguments.end(), {"--machine", file.c_str()});
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = RunCommandLine(static_cast<int>(arguments.size()), arguments.data());
    const std::string output = testing::internal::GetCapturedStdout();
    const std::string complaint = testing::internal::GetCapturedStderr();
    EXPECT_THAT(command.statuses, testing::Contains(status));
    EXPECT_NE(output + complaint, "");
    if (status == 2) {
      EXPECT_THAT(complaint, testing::StartsWith("norv-battery: "));
    }
    EXPECT_EQ(Folders(), before_);
  }

  static int Folders() {
    int count = 0;
    for (const auto& entry : fs::directory_iterator(fs::temp_directory_path())) {
      count += entry.path().filename().string().starts_with("norv-simulated-machine-") ? 1 : 0;
    }
    return count;
  }

  int before_ = Folders();
  fs::path file_ = fs::temp_directory_path() / "machine-with-a-fault.json";
};

TEST_F(FaultsTest, EveryCommandEndsProperlyWithEveryFault) {
  const Array faults = AllFaults();
  ASSERT_GT(faults.size(), 150U);
  for (const Value& fault : faults) {
    RunCommandsOn("faults", fault);
  }
}

TEST_F(FaultsTest, EveryCommandEndsProperlyWithEveryThrowingAnswer) {
  const Array answers = AllThrowingAnswers();
  ASSERT_EQ(answers.size(), 60U);
  for (const Value& answer : answers) {
    RunCommandsOn("answers", answer);
  }
}

}  // namespace

}  // namespace norv::tool
