#include "machine/MachineFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <limits>
#include <string_view>
#include <system_error>

#include "base/Time.h"
#include "json/Parse.h"
#include "machine/AnswerFile.h"
#include "machine/BlockFile.h"
#include "machine/FaultFile.h"
#include "machine/JsonNode.h"
#include "machine/VersionText.h"
#include "machine/WmiFile.h"
#include "norv/simulator/SimulatedMachine.h"

namespace norv::simulator {

namespace {

constexpr std::size_t kLongestMessage = 65535;
constexpr std::int64_t kLongestRun = 3600000;  // milliseconds: an hour
constexpr std::int64_t kLargestOffset = 840;   // minutes: no zone is further from UTC

std::string ReadLine(const JsonNode& node) {
  const std::string& text = node.Text();
  if (text.empty() || text.find_first_of("\r\n") != std::string::npos) {
    node.FailExpecting("one line of text that is not empty");
  }
  return text;
}

// A report as the test program writes it, with the verdict in row 6.
std::string ReportWithStatus(std::int64_t status) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<report>\n  <r i=\"1\">BatteryTest</r>\n  <r i=\"6\">" +
         std::to_string(status) + "</r>\n</report>\n";
}

std::optional<std::string> ReadReport(const JsonNode& node) {
  const auto report = node.Member("report");
  const auto status = node.Member("status");
  if (report && status) {
    status->Fail("expected either \"report\" or \"status\", found both");
  }
  if (status) {
    using Limits = std::numeric_limits<std::int32_t>;
    return ReportWithStatus(status->WholeNumber(Limits::min(), Limits::max()));
  }
  return report && !report->IsNull() ? std::optional(report->Text()) : std::nullopt;
}

std::optional<TestProgramDescription> ReadTestProgram(const JsonNode& node) {
  if (node.IsNull()) {
    return std::nullopt;
  }
  node.ExpectKeys({"version", "startFails", "report", "status", "runsMilliseconds"});
  TestProgramDescription program;
  program.version = ReadVersion(node.RequiredMember("version", "its product version, or null for none"));
  if (const auto startFails = node.Member("startFails")) {
    program.startCode = startFails->Code();
  }
  program.report = ReadReport(node);
  if (const auto runs = node.Member("runsMilliseconds")) {
    program.runs = std::chrono::milliseconds(runs->WholeNumber(0, kLongestRun));
  }
  return program;
}

// The code that a key of "systemMessages" stands for: "5" or "0x80070005".
std::uint32_t ReadMessageCode(const JsonNode& message) {
  const std::string& key = message.Name();
  const bool isHex = key.size() > 2 && key[0] == '0' && (key[1] == 'x' || key[1] == 'X');
  const char* const start = key.data() + (isHex ? 2 : 0);
  const char* const end = key.data() + key.size();
  std::uint32_t code = 0;
  const auto result = std::from_chars(start, end, code, isHex ? 16 : 10);
  const std::ptrdiff_t digits = end - start;
  if (result.ec != std::errc() || result.ptr != end || (isHex ? digits > 8 : digits > 1 && *start == '0')) {
    message.Fail("expected a code from 0 to 4294967295 in decimal or as 0x80070005 for a key");
  }
  return code;
}

std::map<std::uint32_t, std::string> ReadSystemMessages(const JsonNode& node) {
  std::map<std::uint32_t, std::string> messages;
  for (const JsonNode& message : node.Members()) {
    const std::uint32_t code = ReadMessageCode(message);
    const std::string text = message.ByteText(kLongestMessage);
    if (text.empty() || text.find('\0') != std::string::npos) {
      message.FailExpecting("a text that is not empty and holds no U+0000");
    }
    if (!messages.emplace(code, text).second) {
      message.Fail("there are two messages for code " + std::to_string(code) + ", expected one");
    }
  }
  return messages;
}

std::time_t ReadNow(const JsonNode& node) {
  const std::optional<std::int64_t> time = base::ParseTime(node.Text());
  if (!time.has_value() || *time < 0) {
    node.FailExpecting("a time \"2024-06-01T12:00:00Z\" from the year 1970 on");
  }
  return *time;
}

void ReadClock(const JsonNode& node, MachineDescription& machine) {
  node.ExpectKeys({"now", "utcOffsetMinutes"});
  if (const auto now = node.Member("now")) {
    machine.now = ReadNow(*now);
  }
  if (const auto offset = node.Member("utcOffsetMinutes")) {
    machine.utcOffsetMinutes = static_cast<int>(offset->WholeNumber(-kLargestOffset, kLargestOffset));
  }
}

std::optional<std::string> ReadTextOrNull(const JsonNode& node) {
  if (!node.IsNull() && !node.IsText()) {
    node.FailExpecting("a text or null");
  }
  return node.IsText() ? std::optional(node.Text()) : std::nullopt;
}

// An empty text, or one line.
std::string ReadOptionalLine(const JsonNode& node, const char* key) {
  const auto member = node.Member(key);
  if (member && member->Text().find_first_of("\r\n") != std::string::npos) {
    member->FailExpecting("one line of text");
  }
  return member ? member->Text() : std::string();
}

Origin ReadOrigin(const JsonNode& node) {
  node.ExpectKeys({"kind", "name", "description", "programData"});
  Origin origin;
  constexpr std::array<std::string_view, 5> kKinds = {"machine", "sample", "file", "folder", "listing"};
  constexpr const char* kExpected = "\"machine\", \"sample\", \"file\", \"folder\" or \"listing\"";
  const JsonNode kind = node.RequiredMember("kind", kExpected);
  origin.kind = kind.Text();
  if (std::find(kKinds.begin(), kKinds.end(), origin.kind) == kKinds.end()) {
    kind.FailExpecting(kExpected);
  }
  origin.name = ReadOptionalLine(node, "name");
  origin.description = ReadOptionalLine(node, "description");
  ReadOptionalLine(node, "programData");
  return origin;
}

void ReadSlots(const JsonNode& node, MachineDescription& machine) {
  std::size_t index = 0;
  for (const JsonNode& slot : node.Items(machine.slots.size())) {
    machine.slots[index++] = ReadSlot(slot);
  }
}

void ReadSurroundings(const JsonNode& root, MachineDescription& machine) {
  if (const auto node = root.Member("wmi")) {
    machine.namespaces = ReadWmi(*node);
  }
  if (const auto node = root.Member("testProgram")) {
    machine.testProgram = ReadTestProgram(*node);
  }
  if (const auto node = root.Member("programData")) {
    machine.programData = {false, ReadTextOrNull(*node)};
  }
  if (const auto node = root.Member("systemMessages")) {
    machine.systemMessages = ReadSystemMessages(*node);
  }
  if (const auto node = root.Member("modulePath")) {
    machine.modulePath = ReadTextOrNull(*node);
  }
  if (const auto node = root.Member("clock")) {
    ReadClock(*node, machine);
  }
  if (const auto node = root.Member("answers")) {
    for (const JsonNode& answer : node->Items()) {
      machine.answers.push_back(ReadAnswer(answer));
    }
  }
  if (const auto node = root.Member("faults")) {
    for (const JsonNode& fault : node->Items()) {
      machine.faults.push_back(ReadFault(fault));
    }
  }
}

json::Value ParseText(const std::string& text, const std::string& file) {
  try {
    return json::Parse(text);
  } catch (const json::ParseError& failure) {
    throw MachineFileError(file + ": " + failure.what());
  }
}

}  // namespace

MachineDescription ReadMachine(const std::string& text, const std::string& file) {
  const json::Value value = ParseText(text, file);
  const JsonNode root(value, file);
  root.ExpectKeys({"$schema", "description", "source", "slots", "wmi", "testProgram", "programData", "systemMessages",
                   "modulePath", "clock", "answers", "faults", "recordedFrom"});
  if (const auto schema = root.Member("$schema")) {
    schema->Text();
  }
  MachineDescription machine;
  machine.description = ReadLine(root.RequiredMember("description", "one line of text"));
  if (const auto source = root.Member("source")) {
    machine.source = ReadLine(*source);
  }
  if (const auto origin = root.Member("recordedFrom")) {
    machine.origin = ReadOrigin(*origin);
  }
  if (const auto slots = root.Member("slots")) {
    ReadSlots(*slots, machine);
  }
  ReadSurroundings(root, machine);
  return machine;
}

std::string ReadTextFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw MachineFileError(path +
                           ": expected a machine file, cannot open it: " + std::generic_category().message(errno));
  }
  std::string text;
  char piece[4096];
  do {
    file.read(piece, sizeof piece);
    text.append(piece, static_cast<std::size_t>(file.gcount()));
    if (text.size() > json::kLongestValue) {
      throw MachineFileError(path + ": expected a machine file of no more than " +
                             std::to_string(json::kLongestValue >> 20U) + " MiB");
    }
  } while (file);
  // A folder opens as a file on some systems, and only its reading fails.
  if (file.bad()) {
    throw MachineFileError(path + ": expected a machine file, cannot read it");
  }
  return text;
}

}  // namespace norv::simulator
