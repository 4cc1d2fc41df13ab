#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

#include "output/EscapeText.h"
#include "output/TextLines.h"
#include "report/EmptySlot.h"
#include "report/TextBattery.h"
#include "report/Verdict.h"
#include "report/WriteReport.h"

namespace norv::tool {

namespace {

constexpr int kSystemFailure = 3;

constexpr std::array<std::pair<int, const char*>, 4> kCategories = {{
    {1, "an exception of unknown kind"},
    {2, "an exception of the standard library"},
    {kSystemFailure, "a status of the operating system"},
    {kValueFailure, "a wrong value, or a return code of the BIOS"},
}};

// Of named sources by their kinds.
constexpr std::array<std::pair<std::string_view, const char*>, 4> kSubjects = {{
    {"sample", "the simulated machine "},
    {"file", "the simulated machine "},
    {"folder", "the power supply folder "},
    {"listing", "the power supply listing "},
}};

constexpr std::string_view kLegend =
    "Numbers are as the battery's firmware gave them, without units. Firmware that follows the\n"
    "Smart Battery Data Specification means mAh or 10 mWh for capacities, mV for voltages, mA for\n"
    "the current and 0.1 K for the temperature; brackets show that reading where it helps.\n"
    "\\x and two hexadecimal digits stand for a text byte that is no printable ASCII character.";

void AddSource(TextLines& lines, const Source& source) {
  lines.Line("Battery report of " + SubjectText(source));
  if (source.recordedAt) {
    lines.Line("Recorded " + *source.recordedAt + ", by the clock of that machine");
  }
  if (!source.description.empty()) {
    lines.Line(EscapeText(source.description));
  }
  lines.Line("Read from: " + EscapeText(source.channel));
}

bool IsFrom(const Failure& failure, std::string_view operation) {
  return failure.function.ends_with(operation);
}

// The collection keeps its last error only and does not name the slot. Slot 0 is read before slot 1, each with its cell
// swell protection data directly after it, and an empty slot 1 leaves no error; often that tells whose error it is.
const char* AbsentBattery(const Report& report, std::size_t slot) {
  const auto& error = report.readError;
  const bool otherIsPresent = report.batteries.at(1 - slot).has_value();
  if (!error || MeansEmptySlot(*error) || (slot == 1 && otherIsPresent && IsFrom(*error, "::ReadNorvBatteryCSP"))) {
    return "No battery.";
  }
  if (otherIsPresent && IsFrom(*error, "::ReadNorvBatteryInfo")) {
    return "The battery could not be read: see the error below.";
  }
  return "No battery, or one that could not be read: see the error below.";
}

void AddBatteries(TextLines& lines, const Report& report) {
  for (std::size_t slot = 0; slot < kSlotCount; ++slot) {
    lines.Heading("Battery " + std::to_string(slot + 1) + " (slot " + std::to_string(slot) + ")");
    if (const auto& battery = report.batteries.at(slot)) {
      AddBattery(lines, *battery, report.cellSwellRequested);
    } else {
      lines.Line(AbsentBattery(report, slot));
    }
  }
}

std::string Hexadecimal(int code) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%02X", static_cast<unsigned int>(code));
  return text.data();
}

void AddVerdict(TextLines& lines, int result) {
  const auto verdict = ExplainResult(result);
  if (!verdict) {
    lines.Row("Verdict", "none: the code is not defined");
    return;
  }
  lines.Row("Verdict", std::string(verdict->verdictClass) + ": " + verdict->meaning);
  if (*verdict->qualifier != '\0') {
    lines.Row("Qualifier", verdict->qualifier);
  }
}

// Where the run itself did not fail, the collection's words for a verdict that is missing do not say why it is.
std::string NoVerdictReason(const std::optional<Failure>& error) {
  const bool isRuns = error && !(error->category == kValueFailure && IsFrom(*error, "::NorvBatteries::RunBatteryTest"));
  return isRuns ? OrEmpty(std::string(WithoutLineBreak(error->message)))
                : "the test program left no report with a status that is a number";
}

void AddTest(TextLines& lines, const TestReport& test) {
  lines.Heading("Battery test");
  if (!test.result) {
    lines.Row("Result code", "none (no verdict)");
    lines.Row("Label", test.label);
    lines.Row("Reason", NoVerdictReason(test.error));
  } else {
    lines.Row("Result code", std::to_string(*test.result) + " (" + Hexadecimal(*test.result) + ")");
    lines.Row("Label", test.label);
    AddVerdict(lines, *test.result);
  }
  lines.Row("Test program version", OrEmpty(test.version));
}

std::string CategoryName(int category) {
  for (const auto& [number, name] : kCategories) {
    if (number == category) {
      return std::to_string(category) + " (" + name + ")";
    }
  }
  return std::to_string(category);
}

std::string CodeText(const Failure& failure) {
  const std::string code = std::to_string(failure.code);
  // Codes of the system are looked up by their hexadecimal form.
  return failure.category == kSystemFailure ? code + " (" + Hexadecimal(static_cast<int>(failure.code)) + ")" : code;
}

void AddFailure(TextLines& lines, const std::string& heading, const Failure& failure) {
  lines.Heading(heading);
  lines.Row("Message", OrEmpty(std::string(WithoutLineBreak(failure.message))));
  lines.Row("Code", CodeText(failure));
  lines.Row("Category", CategoryName(failure.category));
  lines.Row("Type of the code", OrEmpty(failure.type));
  lines.Row("Function", OrEmpty(failure.function));
}

}  // namespace

std::string SubjectText(const Source& source) {
  const std::string recording = source.isRecording ? "a recording of " : "";
  if (source.name.empty()) {
    return recording + (source.isRecording ? "the machine that it was made on" : "this machine");
  }
  const auto* const subject =
      std::find_if(kSubjects.begin(), kSubjects.end(), [&](const auto& entry) { return entry.first == source.kind; });
  return recording + (subject != kSubjects.end() ? subject->second : "") + EscapeText(source.name);
}

std::string TextReport(const Report& report) {
  TextLines lines;
  AddSource(lines, report.source);
  lines.Line("");
  lines.Line(kLegend);
  AddBatteries(lines, report);
  if (HasNoBattery(report)) {
    lines.Section("No slot of the machine holds a battery. That is no failure.");
  }
  if (report.test) {
    AddTest(lines, *report.test);
  }
  if (report.readError && !MeansEmptySlot(*report.readError)) {
    AddFailure(lines, "Last error while the batteries were read", *report.readError);
  }
  return lines.Text();
}

}  // namespace norv::tool
