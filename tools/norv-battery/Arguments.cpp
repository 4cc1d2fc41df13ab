#include "Arguments.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <map>
#include <memory>
#include <sstream>
#include <system_error>

#include "PowerSupply.h"
#include "output/EscapeText.h"
#include "record/Key.h"
#include "report/Report.h"

namespace norv::tool {

namespace {

constexpr const char* kReportFooter =
    "Exit status:\n"
    "  0  at least one battery was read\n"
    "  1  there is no battery, or none could be read; the report says which\n"
    "  2  the arguments or the machine file are wrong, or the output could not be written\n"
    "  3  the battery test ended in a verdict of the class FAIL\n"
    "  4  the battery test came to no verdict; the report says why";

constexpr const char* kDecodeFooter =
    "Exit status:\n"
    "  0  every row was decoded\n"
    "  1  at least one row could not be; the row says why\n"
    "  2  the arguments are wrong, no input holds anything to decode, or the output could not be written";

constexpr const char* kEncodeFooter =
    "Exit status:\n"
    "  0  every battery was encoded\n"
    "  2  the arguments or an input are wrong, or the output could not be written";

constexpr const char* kRecordFooter =
    "Exit status:\n"
    "  0  at least one battery was read\n"
    "  1  there is no battery, or none could be read; the recording holds which\n"
    "  2  the arguments or the machine file are wrong, or the output could not be written";

constexpr const char* kWatchFooter =
    "Exit status:\n"
    "  0  all readings were made, or the watch was interrupted\n"
    "  2  the arguments or the machine file are wrong, or the output could not be written";

const std::map<std::string, Format> kFormats = {{"text", Format::Text}, {"json", Format::Json}};

const std::map<std::string, RowFormat> kRowFormats = {
    {"jsonl", RowFormat::JsonLines}, {"csv", RowFormat::Csv}, {"text", RowFormat::Text}};

const std::map<std::string, std::optional<InputKind>> kGivenKinds = {
    {"bin", InputKind::Binary}, {"hex", InputKind::Hexadecimal}, {"dump", InputKind::Dump}};

const std::map<std::string, BlockFormat> kBlockFormats = {{"bin", BlockFormat::Binary},
                                                          {"hex", BlockFormat::Hexadecimal}};

const std::map<std::string, std::optional<WatchFormat>> kWatchFormats = {{"text", WatchFormat::Text},
                                                                         {"jsonl", WatchFormat::JsonLines}};

// plog's numbers of the severities at which the library logs.
const std::map<std::string, unsigned int> kLogSeverities = {{"none", 0}, {"error", 2}, {"info", 4}, {"verbose", 6}};

template <typename Value>
CLI::Option* AddChoice(CLI::App& command, const std::string& name, Value& value,
                       const std::map<std::string, Value>& choices, const std::string& description,
                       const std::string& choiceNames, const std::string& standard) {
  const auto choose = [name, choices, choiceNames, &value](const CLI::results_t& texts) {
    const auto found = choices.find(texts.back());
    if (found == choices.end()) {
      throw CLI::ValidationError(name, Quote(texts.back()) + " is none of " + choiceNames);
    }
    value = found->second;
    return true;
  };
  return command.add_option(name, choose, description)
      ->option_text(choiceNames + " [" + standard + "]")
      ->multi_option_policy(CLI::MultiOptionPolicy::Throw)
      ->expected(1);
}

void AddMachine(CLI::App& command, std::optional<std::string>& machine, std::optional<std::string>& powerSupply) {
  command.add_option("--machine", machine, "Read this machine: a sample's name, or a machine file")
      ->option_text("FILE-OR-SAMPLE");
  if (HasPowerSupplies()) {
    command
        .add_option("--power-supply", powerSupply,
                    "Read the batteries in this copy or listing of a notebook's /sys/class/power_supply")
        ->option_text("FOLDER-OR-LISTING")
        ->check(PowerSupplyDefect)
        ->excludes("--machine");
  }
}

void DescribeReport(CLI::App& command, Arguments& arguments) {
  AddMachine(command, arguments.machine, arguments.powerSupply);
  AddChoice(command, "--format", arguments.format, kFormats, "How to write the report", "text|json", "text");
  AddChoice(command, "--log-level", arguments.logSeverity, kLogSeverities,
            "What of the library's log to write to standard error", "none|error|info|verbose", "none");
  command.add_flag("--cell-swell", arguments.cellSwell, "Read the cell swell protection data, too");
  command.add_flag("--test", arguments.test, "Run the battery test, too, and wait for its end");
  command.footer(kReportFooter);
}

CLI::Option* AddToday(CLI::App& command, std::optional<Day>& today) {
  const auto choose = [&today](const CLI::results_t& texts) {
    today = ParseDay(texts.back());
    if (!today || !Exists(*today) || today->year < 1970) {
      throw CLI::ValidationError("--date", Quote(texts.back()) + " is no day YYYY-MM-DD from 1970 on");
    }
    return true;
  };
  return command.add_option("--date", choose, "Count ages up to this day")
      ->option_text("YYYY-MM-DD [today]")
      ->multi_option_policy(CLI::MultiOptionPolicy::Throw)
      ->expected(1);
}

// To be added behind --format: what the command line gives is taken over in this order, whichever its own is.
void AddRawCsv(CLI::App& command, RowFormat& format) {
  command
      .add_flag_callback(
          "--raw-csv",
          [&format] {
            if (format != RowFormat::Csv) {
              throw CLI::ValidationError("--raw-csv", "goes with --format csv only");
            }
            format = RowFormat::RawCsv;
          },
          "With --format csv: leave control characters and what a spreadsheet would run as they are")
      ->needs("--format");
}

void DescribeDecode(CLI::App& command, DecodeOptions& options) {
  constexpr unsigned int kMostJobs = 256;
  command
      .add_option("FILE", options.sources,
                  "Files of 128-byte blocks, of one block in hex digits a line, or of hex dumps; - or none "
                  "is standard input")
      ->option_text("[FILE ...]");
  AddChoice(command, "--input", options.input, kGivenKinds, "What the files hold", "bin|hex|dump",
            "recognised by itself");
  AddChoice(command, "--format", options.format, kRowFormats, "How to write the rows", "jsonl|csv|text", "jsonl");
  AddRawCsv(command, options.format);
  command.add_option("--output", options.output, "Write to this file, which appears once it is complete")
      ->option_text("FILE");
  command.add_option("--jobs", options.jobs, "Decode with this many threads")
      ->option_text("N [all cores]")
      ->check(CLI::Range(1U, kMostJobs));
  AddToday(command, options.today);
  command.footer(kDecodeFooter);
}

void DescribeEncode(CLI::App& command, EncodeOptions& options) {
  CLI::Option* const files =
      command.add_option("FILE", options.sources, "JSON reports or decoded rows; - or none is standard input")
          ->option_text("[FILE ...]");
  command.add_option("--machine", options.machine, "Encode this machine: a sample's name, or a machine file")
      ->option_text("FILE-OR-SAMPLE")
      ->excludes(files);
  command.add_option("--slot", options.slot, "Take this slot of reports and machines")
      ->option_text("0|1 [both]")
      ->check(CLI::Range(0, kSlotCount - 1));
  AddChoice(command, "--format", options.format, kBlockFormats, "How to write the blocks", "bin|hex", "hex");
  command.add_option("--output", options.output, "Write to this file, which appears once it is complete")
      ->option_text("FILE");
  command.footer(kEncodeFooter);
}

// Whoever gives a key as an argument has it in a file of their shell's by then, and learns where keys belong.
void RefuseKeyArgument(CLI::App& command) {
  const auto refuse = [](const CLI::results_t&) -> bool {
    throw CLI::ValidationError("--key", std::string("other users can read a key in the arguments; put it into a file "
                                                    "for --key-file or into the environment variable ") +
                                            kKeyVariable);
  };
  command.add_option("--key", refuse)->expected(0, 1)->group("");
}

void DescribeRecord(CLI::App& command, RecordOptions& options) {
  AddMachine(command, options.machine, options.powerSupply);
  command.add_option("--output", options.output, "Write to this file, which appears once it is complete")
      ->option_text("FILE");
  command.add_flag("--cell-swell", options.cellSwell, "Record the cell swell protection data, too");
  command.add_flag("--test", options.test, "Run and record the battery test, too, and wait for its end");
  CLI::Option* const redact =
      command.add_flag("--redact", options.redact, "Leave out whose machine it is, and replace its numbers by others");
  command.add_option("--key-file", options.keyFile, "Take the key that decides by which ones from this file")
      ->option_text(std::string("FILE [") + kKeyVariable + ", or made and shown]")
      ->needs(redact);
  RefuseKeyArgument(command);
  command.footer(kRecordFooter);
}

void AddInterval(CLI::App& command, std::chrono::duration<double>& interval) {
  const auto choose = [&interval](const CLI::results_t& texts) {
    const std::string& text = texts.back();
    double seconds = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool isNumber = result.ec == std::errc() && result.ptr == text.data() + text.size();
    // Written so that what is no number fails, too.
    if (!isNumber || !(seconds >= kShortestInterval && seconds <= kLongestInterval)) {
      throw CLI::ValidationError("--interval", Quote(text) + " is no number of seconds from 0.01 to 86400");
    }
    interval = std::chrono::duration<double>(seconds);
    return true;
  };
  command.add_option("--interval", choose, "Read again after this many seconds")
      ->option_text("SECONDS [5]")
      ->multi_option_policy(CLI::MultiOptionPolicy::Throw)
      ->expected(1);
}

void DescribeWatch(CLI::App& command, WatchOptions& options) {
  constexpr unsigned int kMostReadings = 4294967295U;
  AddMachine(command, options.machine, options.powerSupply);
  AddInterval(command, options.interval);
  command.add_option("--count", options.count, "End after this many readings")
      ->option_text("N [no end]")
      ->check(CLI::Range(1U, kMostReadings));
  AddChoice(command, "--format", options.format, kWatchFormats, "How to show a reading", "text|jsonl",
            "a table on a terminal, otherwise jsonl");
  command.add_flag("--cell-swell", options.cellSwell, "Read the cell swell protection data, too");
  command.footer(kWatchFooter);
}

// The long text of the subcommand that was named, if one was, otherwise of the tool.
std::string Help(const CLI::App& app) {
  const auto named = app.get_subcommands();
  return named.empty() ? app.help() : named.front()->help(app.get_name());
}

}  // namespace

ParsedArguments ParseArguments(int argc, const char* const* argv) {
  Arguments arguments;
  CLI::App app(
      "Reports, watches and records the batteries of this machine, or of a simulated one, and decodes saved blocks.",
      "norv-battery");
  app.set_version_flag("--version", "norv-battery " NORV_BATTERY_VERSION);
  app.require_subcommand(1);
  app.footer("'norv-battery COMMAND --help' tells the options of a command.");
  CLI::App* const report = app.add_subcommand("report", "Read the batteries and report them");
  CLI::App* const machines = app.add_subcommand("machines", "List the sample machines");
  CLI::App* const decode = app.add_subcommand("decode", "Decode saved battery-information blocks");
  CLI::App* const encode = app.add_subcommand("encode", "Make blocks from reports, decoded rows or machines");
  CLI::App* const record = app.add_subcommand("record", "Record a machine into a machine file");
  CLI::App* const watch = app.add_subcommand("watch", "Read the batteries again and again and show what changed");
  DescribeReport(*report, arguments);
  DescribeRecord(*record, arguments.record);
  DescribeWatch(*watch, arguments.watch);
  DescribeDecode(*decode, arguments.decode);
  DescribeEncode(*encode, arguments.encode);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    return {std::nullopt, Help(app), ""};
  } catch (const CLI::CallForVersion&) {
    return {std::nullopt, app.version() + "\n", ""};
  } catch (const CLI::ParseError& error) {
    // A misspelt command is first missed, and only then found to be left over.
    const bool isUnknownCommand = app.get_subcommands().empty() && app.remaining_size() > 0;
    return {std::nullopt, "",
            isUnknownCommand ? "there is no command or option " + Quote(app.remaining().front())
                             : PrintableLine(error.what())};
  }
  arguments.command = machines->parsed() ? Command::Machines
                      : decode->parsed() ? Command::Decode
                      : encode->parsed() ? Command::Encode
                      : record->parsed() ? Command::Record
                      : watch->parsed()  ? Command::Watch
                                         : Command::Report;
  return {arguments, "", ""};
}

}  // namespace norv::tool
