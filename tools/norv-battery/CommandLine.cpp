#include "CommandLine.h"

#include <algorithm>
#include <exception>
#include <string>

#include "Arguments.h"
#include "ExitStatus.h"
#include "LogToStandardError.h"
#include "Machine.h"
#include "decode/Decode.h"
#include "encode/Encode.h"
#include "output/BinaryStreams.h"
#include "output/EscapeText.h"
#include "output/StandardStreams.h"
#include "record/Record.h"
#include "report/EmptySlot.h"
#include "report/ReadReport.h"
#include "report/Verdict.h"
#include "report/WriteReport.h"
#include "watch/Watch.h"

namespace norv::tool {

namespace {

std::string SampleList() {
  const auto samples = simulator::SampleMachines();
  std::size_t width = 0;
  for (const auto& sample : samples) {
    width = std::max(width, sample.name.size());
  }
  std::string text;
  for (const auto& sample : samples) {
    text += sample.name + std::string(width + 2 - sample.name.size(), ' ') + EscapeText(sample.description) + '\n';
  }
  return text;
}

int StatusOf(const Report& report) {
  if (report.test && !ExplainResult(report.test->result)) {
    return kNoVerdict;
  }
  if (report.test && IsFailure(report.test->result)) {
    return kTestFailed;
  }
  return report.HasBattery() ? kSuccess : kNoBattery;
}

std::string WhyNothingWasRead(const Report& report) {
  const std::string subject = SubjectText(report.source);
  return HasNoBattery(report) ? subject + " has no battery" : "no battery of " + subject + " could be read";
}

int MakeReport(const Arguments& arguments) {
  const Machine machine = ChooseMachine(arguments.machine, arguments.powerSupply);
  if (arguments.logSeverity > 0) {
    LogToStandardError(arguments.logSeverity);
  }
  const Report report = ReadReport(machine.source, {arguments.cellSwell, arguments.test});
  if (arguments.format == Format::Json) {
    UseBinaryStreams();  // JSON is for programs, which need no line ends of this system
  }
  if (!WriteToStandardOutput(arguments.format == Format::Json ? JsonReport(report) : TextReport(report))) {
    return kUnusable;
  }
  if (!arguments.machine && !report.HasBattery()) {
    Complain(WhyNothingWasRead(report) +
             ". For the report of a sample machine, type\n"
             "  norv-battery report --machine two-batteries");
  }
  return StatusOf(report);
}

int Run(int argc, const char* const* argv) {
  const ParsedArguments parsed = ParseArguments(argc, argv);
  if (!parsed.complaint.empty()) {
    Complain(parsed.complaint + "\n'norv-battery --help' tells what can be asked for.");
    return kUnusable;
  }
  if (!parsed.arguments) {
    return WriteToStandardOutput(parsed.output) ? kSuccess : kUnusable;
  }
  switch (parsed.arguments->command) {
    case Command::Report:
      return MakeReport(*parsed.arguments);
    case Command::Machines:
      return WriteToStandardOutput(SampleList()) ? kSuccess : kUnusable;
    case Command::Decode:
      return RunDecode(parsed.arguments->decode);
    case Command::Encode:
      return RunEncode(parsed.arguments->encode);
    case Command::Record:
      return RunRecord(parsed.arguments->record);
    case Command::Watch:
      return RunWatch(parsed.arguments->watch);
  }
  return kUnusable;
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv) {
  try {
    return Run(argc, argv);
  } catch (const simulator::MachineFileError& failure) {
    Complain("--machine: " + PrintableLine(failure.what()));
  } catch (const std::exception& failure) {
    Complain(PrintableLine(failure.what()));
  } catch (...) {
    // A machine file's faults are such, and a maker's BIOS channel may throw what it likes.
    Complain("the machine failed with an exception that does not say why");
  }
  return kUnusable;
}

}  // namespace norv::tool
