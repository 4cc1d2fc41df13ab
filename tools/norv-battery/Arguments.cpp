#include "Arguments.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <sstream>

namespace norv::tool {

namespace {

constexpr const char* kFooter =
    "Exit status:\n"
    "  0  at least one battery was read\n"
    "  1  no battery could be read; the report says why\n"
    "  2  the arguments or the machine file are wrong, or the output could not be written\n"
    "  3  the battery test ended in a verdict of the class FAIL";

const std::map<std::string, Format> kFormats = {{"text", Format::Text}, {"json", Format::Json}};

// plog's numbers of the severities at which the library logs.
const std::map<std::string, unsigned int> kLogSeverities = {{"none", 0}, {"error", 2}, {"info", 4}, {"verbose", 6}};

template <typename Value>
CLI::Option* AddChoice(CLI::App& command, const std::string& name, Value& value,
                       const std::map<std::string, Value>& choices, const std::string& description,
                       const std::string& choiceNames, const std::string& standard) {
  const auto choose = [name, choices, choiceNames, &value](const CLI::results_t& texts) {
    const auto found = choices.find(texts.back());
    if (found == choices.end()) {
      throw CLI::ValidationError(name, "'" + texts.back() + "' is none of " + choiceNames);
    }
    value = found->second;
    return true;
  };
  return command.add_option(name, choose, description)
      ->option_text(choiceNames + " [" + standard + "]")
      ->multi_option_policy(CLI::MultiOptionPolicy::Throw)
      ->expected(1);
}

void DescribeReport(CLI::App& command, Arguments& arguments) {
  command.add_option("--machine", arguments.machine, "Read this machine: a sample's name, or a machine file")
      ->option_text("FILE-OR-SAMPLE");
  AddChoice(command, "--format", arguments.format, kFormats, "How to write the report", "text|json", "text");
  AddChoice(command, "--log-level", arguments.logSeverity, kLogSeverities,
            "What of the library's log to write to standard error", "none|error|info|verbose", "none");
  command.add_flag("--cell-swell", arguments.cellSwell, "Read the cell swell protection data, too");
  command.add_flag("--test", arguments.test, "Run the battery test, too, and wait for its end");
  command.footer(kFooter);
}

// The long text of the subcommand that was named, if one was, otherwise of the tool.
std::string Help(const CLI::App& app) {
  const auto named = app.get_subcommands();
  return named.empty() ? app.help() : named.front()->help(app.get_name());
}

}  // namespace

ParsedArguments ParseArguments(int argc, const char* const* argv) {
  Arguments arguments;
  CLI::App app("Reports the batteries of this machine, or of a simulated one.", "norv-battery");
  app.set_version_flag("--version", "norv-battery " NORV_BATTERY_VERSION);
  app.require_subcommand(1);
  app.footer("'norv-battery report --help' tells the options of a report.");
  CLI::App* const report = app.add_subcommand("report", "Read the batteries and report them");
  CLI::App* const machines = app.add_subcommand("machines", "List the sample machines");
  DescribeReport(*report, arguments);
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
            isUnknownCommand ? "there is no command or option '" + app.remaining().front() + "'" : error.what()};
  }
  arguments.command = machines->parsed() ? Command::Machines : Command::Report;
  return {arguments, "", ""};
}

}  // namespace norv::tool
