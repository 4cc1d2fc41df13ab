// The report of the battery test: finding the status, reading the file, starting the program.
#include "battery/NorvBatteryTestXmlParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "norv/platform/Platform.h"
#include "norv/simulator/SimulatedMachine.h"
#include "test/ReportSearch.h"
#include "unit/support/LogCapture.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteryTestXmlParser;
using shared::battery::test::FindLastContent;
using shared::error::ErrorCategory;
using simulator::SimulatedMachine;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kGenerate = "norv::shared::battery::NorvBatteryTestXmlParser::GenerateBatteryTestXMLReport";
constexpr const char* kReadFile = "norv::shared::battery::NorvBatteryTestXmlParser::GetFileXMLData";
constexpr const char* kReadStatus = "norv::shared::battery::NorvBatteryTestXmlParser::GetBatteryStatusFromXMLReport";

struct Row {
  const char* report;
  int status;
};

TEST(StatusInReport, IsTheNumberInItsElement) {
  for (const Row& row : {
           Row{R"(<r i="6">3</r>)", 3},
           Row{R"(<?xml version="1.0"?><t><r i="5">1</r><r i="6">144</r><r i="7">2</r></t>)", 144},
           Row{R"(<r i="6">12abc</r>)", 12},
           Row{R"(<r i="6">  7</r>)", 7},
           Row{"<r i=\"6\">\r\n\t8\n</r>", 8},
           Row{R"(<r i="6">+9</r>)", 9},
           Row{R"(<r i="6">-10</r>)", -10},
           Row{R"(<r i="6">-1</r>)", -1},
           Row{R"(<r i="6">2147483647</r>)", 2147483647},
           Row{R"(<r i="6">-2147483648</r>)", -2147483647 - 1},
           Row{R"(<r i="6">1</r> and <r i="6">2</r>)", 2},
           Row{R"(<r i="6" t="x">5</r>)", 5},
           Row{R"(<r i="6"x>5</r>)", 5},
           Row{R"(<r i="6">4</rx>)", 4},
           Row{R"(<r i="6">4<r>5</r></r>)", 4},
           Row{R"(<r i="6">11</r><r i="6">12)", 11},  // the last complete element
           Row{R"(no end <r i="6" and no close)", -1},
           Row{R"(7</r><r i="6")", 7},                    // never closed: the content begins with the report
           Row{R"(<r i="6">1</r> 2 </r> <r i="6")", -1},  // "<r i=..." is no number
       }) {
    NorvBatteryTestXmlParser parser;
    EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(row.report), row.status) << row.report;
  }
}

TEST(StatusInReport, MayBeMissingWithoutAnError) {
  for (const char* report : {"", "text", "<r>5</r>", R"(<r i="60">5</r>)", R"(<r  i="6">5</r>)", R"(<r i='6'>5</r>)",
                             R"(<r i="6>5</r>)", R"(<R i="6">5</R>)", R"(<r t="x" i="6">5</r>)", R"(<r i="6"></r>)",
                             R"(<r i="6">5)", R"(<rr i="6">5</rr>)", R"(<r i="16">5</r>)", R"(< r i="6">5</r>)"}) {
    NorvBatteryTestXmlParser parser;
    LogCapture log;
    EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(report), -1) << report;
    EXPECT_FALSE(parser.GetError()) << report;
    EXPECT_THAT(log.Lines(), IsEmpty());
  }
}

TEST(StatusInReport, MustBeANumberThatFits) {
  for (const char* content : {"abc", " ", "-", "+", "- 1", "99999999999", "2147483648", "-2147483649", ".5", "x1"}) {
    NorvBatteryTestXmlParser parser;
    LogCapture log;
    const std::string report = std::string(R"(<r i="6">)") + content + "</r>";
    EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(report.c_str()), -1) << content;
    EXPECT_TRUE(IsError(parser.GetError(), ErrorCategory::Value, 0, "Battery Status contains non-integer value", "int",
                        kReadStatus));
    EXPECT_THAT(log.Lines(), ElementsAre(LogLine{plog::error, kReadStatus, TextForm(parser.GetError())}));
  }
}

TEST(StatusInReport, AValueOnceFoundStays) {
  NorvBatteryTestXmlParser parser;
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(R"(<r i="6">3</r>)"), 3);
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport("nothing"), 3);
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(R"(<r i="6"></r>)"), -1);
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport("nothing"), -1);
}

TEST(ReportSearch, GoesOnBehindEachEndMarker) {
  EXPECT_EQ(FindLastContent("<r>1</r><r>2</r>", "r", ""), "2");
  EXPECT_EQ(FindLastContent("<r>1</r>", "r", " i"), std::nullopt);
  EXPECT_EQ(FindLastContent("<r>a<r>b</r>c</r>", "r", ""), "a<r>b") << "nested elements end at the first end marker";
}

TEST(ReportSearch, EndsWhereItWouldFindTheSameTagAgain) {
  // The last start tag has no end, so its content begins with the report; the first end marker lies before the tag.
  EXPECT_EQ(FindLastContent("ab</r>cd<r", "r", ""), "ab");
  EXPECT_EQ(FindLastContent("<r>1</r> <r", "r", ""), "<r>1");
  // An end marker right where the start tag begins cannot be; right behind it ends the search as well.
  EXPECT_EQ(FindLastContent("<r</r", "r", ""), "<r");
  EXPECT_EQ(FindLastContent("<r</r <r</r", "r", ""), "<r");
}

TEST(ReportSearch, StaysLinearOnHostileReports) {
  constexpr std::size_t kSize = 10'000'000;
  for (const std::string part :
       {"<r i=\"6\">", "</r", "<r i=\"6\"", "<r i=\"6\"></r", "<", "<r i=\"6", "</r><r i=\"6\""}) {
    std::string report;
    while (report.size() < kSize) {
      report += part;
    }
    const auto before = std::chrono::steady_clock::now();
    const auto content = FindLastContent(report, "r", " i=\"6\"");
    // A search that began anew at each marker would take hours; this bound only tells the two apart.
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(30)) << part;
    EXPECT_LE(content.value_or("").size(), report.size());
  }
}

constexpr const char* kWithReport = R"({"description": "test", "testProgram": {"version": "1.2.3.4", "report": )";

std::unique_ptr<SimulatedMachine> MachineWithReport(const std::string& report) {
  auto machine = SimulatedMachine::FromText(kWithReport + report + "}}", "here");
  machine->AsPlatform().RunProgram("C:\\Program Files\\Norv\\BatteryTest.exe");
  return machine;
}

TEST(ReportFile, IsReadFromTheProgramDataFolder) {
  const auto machine = MachineWithReport(R"("<r i=\"6\">33</r>")");
  NorvBatteryTestXmlParser parser;
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), 33);
  EXPECT_FALSE(parser.GetError());
}

TEST(ReportFile, IsReadByteByByteAndToItsFirstNul) {
  const auto machine = MachineWithReport(R"("\u0001\r\n \t<r i=\"6\"\n>\n 34</r>\u0000<r i=\"6\">35</r>")");
  NorvBatteryTestXmlParser parser;
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), 34);
}

TEST(ReportFile, IsAppendedToWhatWasReadBefore) {
  auto machine = MachineWithReport(R"("<r i=\"6\">1")");
  NorvBatteryTestXmlParser parser;
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), -1) << "no end marker yet";
  machine.reset();
  machine = MachineWithReport(R"("5</r>")");
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), 15) << "the second file stands behind the first";
}

TEST(ReportFile, ASecondReadStillGivesTheLastElement) {
  const auto machine = MachineWithReport(R"("<r i=\"6\">1</r><r i=\"6\">2</r>")");
  NorvBatteryTestXmlParser parser;
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), 2);
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), 2);
}

TEST(ReportFile, MayBeMissing) {
  const auto machine = MachineWithReport("null");
  NorvBatteryTestXmlParser parser;
  LogCapture log;
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), -1);
  EXPECT_TRUE(IsError(parser.GetError(), ErrorCategory::Value, 0, "Battery XML report not found", "int", kReadFile));
  EXPECT_THAT(log.Lines(), ElementsAre(LogLine{plog::error, kReadFile, TextForm(parser.GetError())}));
}

TEST(ReportFile, ThatFailsToOpenWithoutACodeLeavesTheOlderText) {
  auto machine = MachineWithReport(R"("<r i=\"6\">8</r>")");
  NorvBatteryTestXmlParser parser;
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), 8);
  machine.reset();
  // A system that gives 0 as its last code: the older report is searched again.
  class NoCode : public platform::PlatformWrapper {
   public:
    explicit NoCode(platform::Platform& inner) : PlatformWrapper(inner), scope_(*this) {}
    std::uint32_t LastSystemCode() override { return 0; }

   private:
    platform::ScopedPlatform scope_;
  };
  machine = MachineWithReport("null");
  const NoCode system(machine->AsPlatform());
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), 8);
  EXPECT_STREQ(parser.GetError().GetMessageText(), "Battery XML report not found");
}

TEST(ReportFile, NeedsAProgramDataFolder) {
  const auto machine = SimulatedMachine::FromText(R"({"description": "test", "programData": null})", "here");
  NorvBatteryTestXmlParser parser;
  LogCapture log;
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), -1);
  EXPECT_TRUE(
      IsError(parser.GetError(), ErrorCategory::Value, 0, "Unable to get path to ProgramData", "int", kReadStatus));
  EXPECT_THAT(log.Lines(), IsEmpty()) << "nothing is logged for this one";
}

TEST(TestProgram, IsRunToItsEnd) {
  const auto machine = MachineWithReport("null");
  NorvBatteryTestXmlParser parser;
  LogCapture log;
  EXPECT_TRUE(parser.GenerateBatteryTestXMLReport("C:\\Program Files\\Norv\\BatteryTest.exe"));
  EXPECT_FALSE(parser.GetError());
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(TestProgram, ThatCannotBeStartedGivesTheSystemsCode) {
  const auto machine = SimulatedMachine::FromText(R"({"description": "test"})", "here");
  NorvBatteryTestXmlParser parser;
  LogCapture log;
  EXPECT_FALSE(parser.GenerateBatteryTestXMLReport("C:\\nowhere\\BatteryTest.exe"));
  EXPECT_TRUE(IsError(parser.GetError(), ErrorCategory::Value, 2, "CreateProcess failed", "unsigned long", kGenerate));
  EXPECT_THAT(log.Lines(), ElementsAre(LogLine{plog::error, kGenerate, TextForm(parser.GetError())}));
}

TEST(TestProgram, ANullPointerNamesNone) {
  for (const bool isSimulated : {false, true}) {
    const auto machine = isSimulated ? SimulatedMachine::FromText(R"({"description": "test"})", "here") : nullptr;
    NorvBatteryTestXmlParser parser;
    EXPECT_NO_THROW(EXPECT_FALSE(parser.GenerateBatteryTestXMLReport(nullptr)));
    EXPECT_STREQ(parser.GetError().GetMessageText(), "CreateProcess failed");
  }
}

TEST(Parser, LetsNoExceptionOut) {
  const auto machine = SimulatedMachine::FromText(
      R"({"description": "test", "faults": [{"operation": "RunProgram", "throws": "bad_alloc"},
                                            {"operation": "ProgramDataFolder", "throws": "runtime_error"}]})",
      "here");
  NorvBatteryTestXmlParser parser;
  LogCapture log;
  EXPECT_NO_THROW(EXPECT_FALSE(parser.GenerateBatteryTestXMLReport("C:\\BatteryTest.exe")));
  EXPECT_TRUE(
      IsError(parser.GetError(), ErrorCategory::StandardException, 1, "std::bad_alloc", "std::bad_alloc", kGenerate));
  EXPECT_NO_THROW(EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), -1));
  EXPECT_TRUE(IsError(parser.GetError(), ErrorCategory::StandardException, 1, "injected fault", "std::runtime_error",
                      kReadStatus));
  EXPECT_EQ(log.Lines().size(), 2U);
}

TEST(ParserCopies, ShareTheirTexts) {
  NorvBatteryTestXmlParser source;
  NorvBatteryTestXmlParser copied(source);
  NorvBatteryTestXmlParser assigned;
  assigned = source;
  EXPECT_EQ(source.GetBatteryStatusFromXMLReport(R"(<r i="6">3</r>)"), 3);
  EXPECT_EQ(copied.GetBatteryStatusFromXMLReport("nothing"), 3);
  EXPECT_EQ(assigned.GetBatteryStatusFromXMLReport("nothing"), 3);
}

TEST(ParserCopies, HaveErrorsOfTheirOwnFromThenOn) {
  NorvBatteryTestXmlParser source;
  source.GetBatteryStatusFromXMLReport(R"(<r i="6">x</r>)");
  const NorvBatteryTestXmlParser copy(source);
  EXPECT_TRUE(copy.GetError());
  NorvBatteryTestXmlParser fresh;
  const NorvBatteryTestXmlParser clean(fresh);
  fresh.GetBatteryStatusFromXMLReport(R"(<r i="6">x</r>)");
  EXPECT_FALSE(clean.GetError());
}

TEST(ParserCopies, OutliveTheirSource) {
  auto source = std::make_unique<NorvBatteryTestXmlParser>();
  source->GetBatteryStatusFromXMLReport(R"(<r i="6">3</r>)");
  NorvBatteryTestXmlParser copy(*source);
  source.reset();
  EXPECT_EQ(copy.GetBatteryStatusFromXMLReport("nothing"), 3);
}

}  // namespace
}  // namespace norv::test
