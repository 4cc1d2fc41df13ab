#include "Arguments.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace norv::tool {
namespace {

ParsedArguments Parse(std::vector<const char*> words) {
  words.insert(words.begin(), "norv-battery");
  return ParseArguments(static_cast<int>(words.size()), words.data());
}

TEST(Arguments, ReportOfTheRunningMachineIsPlain) {
  const auto parsed = Parse({"report"});
  ASSERT_TRUE(parsed.arguments);
  EXPECT_EQ(parsed.arguments->command, Command::Report);
  EXPECT_EQ(parsed.arguments->machine, std::nullopt);
  EXPECT_EQ(parsed.arguments->format, Format::Text);
  EXPECT_EQ(parsed.arguments->logSeverity, 0U);
  EXPECT_FALSE(parsed.arguments->cellSwell);
  EXPECT_FALSE(parsed.arguments->test);
}

TEST(Arguments, EveryOptionOfAReport) {
  const auto parsed = Parse(
      {"report", "--machine", "two-batteries", "--format", "json", "--log-level=verbose", "--cell-swell", "--test"});
  ASSERT_TRUE(parsed.arguments) << parsed.complaint;
  EXPECT_EQ(parsed.arguments->machine, "two-batteries");
  EXPECT_EQ(parsed.arguments->format, Format::Json);
  EXPECT_EQ(parsed.arguments->logSeverity, 6U);
  EXPECT_TRUE(parsed.arguments->cellSwell);
  EXPECT_TRUE(parsed.arguments->test);
}

TEST(Arguments, LogLevelsAreSeverities) {
  EXPECT_EQ(Parse({"report", "--log-level", "none"}).arguments->logSeverity, 0U);
  EXPECT_EQ(Parse({"report", "--log-level", "error"}).arguments->logSeverity, 2U);
  EXPECT_EQ(Parse({"report", "--log-level", "info"}).arguments->logSeverity, 4U);
}

TEST(Arguments, Machines) {
  EXPECT_EQ(Parse({"machines"}).arguments->command, Command::Machines);
}

TEST(Arguments, HelpAndVersionLeaveNothingToDo) {
  EXPECT_FALSE(Parse({"--version"}).arguments);
  EXPECT_EQ(Parse({"--version"}).output, "norv-battery " NORV_BATTERY_VERSION "\n");
  const auto help = Parse({"report", "--help"});
  EXPECT_FALSE(help.arguments);
  EXPECT_TRUE(help.complaint.empty());
  EXPECT_NE(help.output.find("--cell-swell"), std::string::npos);
}

TEST(Arguments, MistakesAreNamed) {
  const auto parsed = Parse({"report", "--format", "xml"});
  EXPECT_FALSE(parsed.arguments);
  EXPECT_EQ(parsed.complaint, "--format: 'xml' is none of text|json");
}

}  // namespace
}  // namespace norv::tool
