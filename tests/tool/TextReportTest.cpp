#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "ReportFixture.h"
#include "report/WriteReport.h"

namespace norv::tool {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kAbsent = "No battery.\n";
constexpr const char* kUnreadable = "The battery could not be read: see the error below.\n";
constexpr const char* kUndecided = "No battery, or one that could not be read: see the error below.\n";

// What the report says about the slot, which is the first line below its heading.
std::string Said(const Report& report, int slot) {
  const std::string text = TextReport(report);
  const std::string heading = "(slot " + std::to_string(slot) + ")\n==================\n";
  const auto start = text.find(heading);
  if (start == std::string::npos) {
    return "no such heading";
  }
  const auto line = start + heading.size();
  return text.substr(line, text.find('\n', line) + 1 - line);
}

Report WithSlots(bool first, bool second, std::optional<Failure> error) {
  Report report;
  if (first) {
    report.batteries[0] = MakeBattery(0);
  }
  if (second) {
    report.batteries[1] = MakeBattery(1);
  }
  report.readError = std::move(error);
  return report;
}

// The line that a report has about the driver's own state of charge, if it has one.
std::string DriverLine(std::optional<std::uint32_t> driver, std::optional<float> computed) {
  Report report = WithSlots(true, false, std::nullopt);
  report.batteries[0]->driverStateOfCharge = driver;
  FieldValue& percentage = (*report.batteries[0])[NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE];
  percentage.state = computed ? NORV_BATTERY_VALUE : NORV_BATTERY_INVALID;
  percentage.real = static_cast<double>(computed.value_or(0));
  const std::string text = TextReport(report);
  const auto start = text.find("  Driver's state of charge        ");
  return start == std::string::npos ? "none" : text.substr(start + 34, text.find('\n', start) - start - 34);
}

TEST(TextReport, NamesADriverThatDisagrees) {
  const std::string disagrees = " %, by its own account; more than a point from the one above";
  EXPECT_EQ(DriverLine(std::nullopt, 57.0F), "none");
  EXPECT_EQ(DriverLine(57, 57.999F), "none");
  EXPECT_EQ(DriverLine(57, 58.0F), "none");
  EXPECT_EQ(DriverLine(57, 56.0F), "none");
  EXPECT_EQ(DriverLine(57, 58.001F), "57" + disagrees);
  EXPECT_EQ(DriverLine(57, 55.999F), "57" + disagrees);
  EXPECT_EQ(DriverLine(4294967295, 0.0F), "4294967295" + disagrees);
  EXPECT_EQ(DriverLine(57, std::nullopt), "57 %, by its own account; there is none to compare it with");
}

TEST(TextReport, SaysWhereItWasRead) {
  Report report = WithSlots(true, false, std::nullopt);
  report.source.channel = "the maker's BIOS channel";
  EXPECT_THAT(TextReport(report), testing::StartsWith("Battery report of this machine\n"
                                                      "Read from: the maker's BIOS channel\n\n"));
  report.source = {"folder", "copied/\xC3\xA4", "", "a driver\n"};
  EXPECT_THAT(TextReport(report), testing::StartsWith("Battery report of the power supply folder copied/\\xC3\\xA4\n"
                                                      "Read from: a driver\\x0A\n\n"));
  report.source = {"file", "x.json", "Words", "a machine file"};
  EXPECT_THAT(TextReport(report), testing::StartsWith("Battery report of the simulated machine x.json\nWords\n"
                                                      "Read from: a machine file\n\n"));
  report.source = {"machine", "", "", "a driver", true, "2024-06-01T12:00:00Z"};
  EXPECT_THAT(TextReport(report),
              testing::StartsWith("Battery report of a recording of the machine that it was made on\n"
                                  "Recorded 2024-06-01T12:00:00Z, by the clock of that machine\n"
                                  "Read from: a driver\n\n"));
}

TEST(TextReport, EmptySecondSlotIsNoBattery) {
  EXPECT_EQ(Said(WithSlots(true, false, std::nullopt), 1), kAbsent);
}

TEST(TextReport, EmptySlotsAreNoBatteries) {
  for (const int code : {6, 52}) {
    const Report report = WithSlots(false, false, MakeFailure(5, code, "ReadNorvBatteryInfo"));
    EXPECT_EQ(Said(report, 0), kAbsent);
    EXPECT_EQ(Said(report, 1), kAbsent);
    EXPECT_THAT(TextReport(report),
                testing::EndsWith("\nNo slot of the machine holds a battery. That is no failure.\n"));
    EXPECT_THAT(TextReport(report), Not(AnyOf(HasSubstr("PrivateBiosWMI"), HasSubstr("::"), HasSubstr("Code"))));
  }
}

TEST(TextReport, EmptyFirstSlotBesideAFullOne) {
  const Report report = WithSlots(false, true, MakeFailure(5, 6, "ReadNorvBatteryInfo"));
  EXPECT_EQ(Said(report, 0), kAbsent);
  EXPECT_THAT(TextReport(report), Not(AnyOf(HasSubstr("Last error"), HasSubstr("No slot of the machine"))));
}

TEST(TextReport, SlotWhoseReadFailedIsNotCalledEmpty) {
  EXPECT_EQ(Said(WithSlots(false, true, MakeFailure(5, 3, "ReadNorvBatteryInfo")), 0), kUnreadable);
  EXPECT_EQ(Said(WithSlots(true, false, MakeFailure(3, 6, "ReadNorvBatteryInfo")), 1), kUnreadable);
}

TEST(TextReport, CellSwellErrorOfTheFirstSlotSaysNothingAboutTheSecond) {
  EXPECT_EQ(Said(WithSlots(true, false, MakeFailure(5, 4, "ReadNorvBatteryCSP")), 1), kAbsent);
}

TEST(TextReport, CellSwellErrorOfTheSecondSlotHidesTheFirstOnes) {
  EXPECT_EQ(Said(WithSlots(false, true, MakeFailure(5, 4, "ReadNorvBatteryCSP")), 0), kUndecided);
}

TEST(TextReport, TwoSlotsOfWhichOneErrorIsLeft) {
  const Report report = WithSlots(false, false, MakeFailure(5, 3, "ReadNorvBatteryInfo"));
  EXPECT_EQ(Said(report, 0), kUndecided);
  EXPECT_EQ(Said(report, 1), kUndecided);
  EXPECT_THAT(TextReport(report), AllOf(HasSubstr("Last error"), Not(HasSubstr("That is no failure"))));
}

TEST(TextReport, SettingsAreTheFirstSlotsOnly) {
  Report report = WithSlots(false, true, std::nullopt);
  EXPECT_THAT(TextReport(report), Not(HasSubstr("BIOS battery care settings")));
  report = WithSlots(true, false, std::nullopt);
  EXPECT_THAT(TextReport(report), HasSubstr("BIOS battery care settings"));
}

TEST(TextReport, TemperatureIsReadOnlyWhereABatteryCanHaveIt) {
  Report report = WithSlots(true, false, std::nullopt);
  EXPECT_THAT(TextReport(report), HasSubstr(" 2982 (25.05 C)\n"));
  (*report.batteries[0])[NORV_BATTERY_TEMPERATURE].number = 2632;
  EXPECT_THAT(TextReport(report), HasSubstr(" 2632 (-9.95 C)\n"));
  (*report.batteries[0])[NORV_BATTERY_TEMPERATURE].number = 0;
  EXPECT_THAT(TextReport(report), HasSubstr("Temperature                     0\n"));
  (*report.batteries[0])[NORV_BATTERY_TEMPERATURE].number = 65535;
  EXPECT_THAT(TextReport(report), HasSubstr(" 65535\n"));
}

TEST(TextReport, FigureThatIsTooLargeIsSaidToBe) {
  Report report = WithSlots(true, false, std::nullopt);
  (*report.batteries[0])[NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE].state = NORV_BATTERY_INVALID;
  EXPECT_THAT(TextReport(report), HasSubstr("not computable (the figure is too large)\n"));
}

TEST(TextReport, AgeThatIsNotKnownHasAReason) {
  Report report = WithSlots(true, false, std::nullopt);
  BatteryReport& battery = *report.batteries[0];
  EXPECT_THAT(TextReport(report), HasSubstr(" 1122 days, by the date at the end of the serial number\n"));
  battery[NORV_BATTERY_AGE].number = 19000;
  battery.ageFailure = Failure{5, -1, "Invalid battery serial number", "int", "GetAge"};
  EXPECT_THAT(TextReport(report), HasSubstr("not known (the serial number does not end in a date)\n"));
  battery[NORV_BATTERY_AGE].number = -1;
  battery.ageFailure = Failure{2, 1, "out of memory", "std::bad_alloc", "GetAge"};
  EXPECT_THAT(TextReport(report), HasSubstr("not known (out of memory)\n"));
  battery[NORV_BATTERY_SERIAL_NUMBER].text = "123";
  EXPECT_THAT(TextReport(report), HasSubstr("not known (the serial number has fewer than 16 characters)\n"));
}

TEST(TextReport, MissingDatesAreSaidToBe) {
  Report report = WithSlots(true, false, std::nullopt);
  BatteryReport& battery = *report.batteries[0];
  EXPECT_THAT(TextReport(report), HasSubstr("Warranty date                   2022-05-06\n"));
  battery[NORV_BATTERY_WARRANTY_DATE].text.clear();
  EXPECT_THAT(TextReport(report), HasSubstr("Warranty date                   not known (no such day)\n"));
  battery[NORV_BATTERY_MANUFACTURING_DATE].text.clear();
  EXPECT_THAT(TextReport(report),
              HasSubstr("Manufacturing date              not known (the firmware's date does not exist)\n"));
}

TEST(TextReport, ErrorShowsItsMessageOnOneLine) {
  Failure failure = MakeFailure(3, -2147024891, "ReadNorvBatteryInfo");
  failure.message = "Access is denied.\r\n";
  const std::string text = TextReport(WithSlots(false, false, failure));
  EXPECT_THAT(text, HasSubstr("Message                         Access is denied.\n"));
  EXPECT_THAT(text, HasSubstr("Code                            -2147024891 (0x80070005)\n"));
  EXPECT_THAT(text, HasSubstr("3 (a status of the operating system)\n"));
}

TEST(TextReport, VerdictInPlainWords) {
  Report report = WithSlots(true, false, std::nullopt);
  report.test = TestReport{0x41, "FAIL_TEMPERATURE_ALARM", "1.2.3.4", std::nullopt};
  const std::string text = TextReport(report);
  EXPECT_THAT(text, HasSubstr("65 (0x41)\n"));
  EXPECT_THAT(text, HasSubstr("FAIL: the battery has failed the test\n"));
  EXPECT_THAT(text, HasSubstr("Qualifier                       temperature alarm\n"));
  report.test = TestReport{0x50, "NOT_DEFINED", "1.2.3.4", std::nullopt};
  EXPECT_THAT(TextReport(report), HasSubstr("Verdict                         none: the code is not defined\n"));
}

TEST(TextReport, TestWithoutVerdictHasOneReason) {
  Report report = WithSlots(true, false, std::nullopt);
  report.test = TestReport{std::nullopt, "NOT_DEFINED", "1.2.3.4", MakeFailure(5, -1, "RunBatteryTest")};
  EXPECT_THAT(TextReport(report),
              AllOf(HasSubstr("Reason                          the test program left no report with a status that is a "
                              "number\n"),
                    Not(HasSubstr("Message"))));
  report.test->error = MakeFailure(2, 1, "RunBatteryTest");
  EXPECT_THAT(TextReport(report), HasSubstr("Reason                          PrivateBiosWMI error\n"));
  report.test->error = Failure{5, 0, "Error getting version of BatteryTest.exe", "int", ""};
  EXPECT_THAT(TextReport(report),
              HasSubstr("Reason                          Error getting version of BatteryTest.exe\n"));
}

}  // namespace
}  // namespace norv::tool
