// Any machine that a machine file can describe: every command that reads machines does so, and what it records replays
// to the same report.
#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "CommandLine.h"
#include "fuzz/Check.h"
#include "fuzz/InputFile.h"
#include "fuzz/MachineMaker.h"
#include "json/Write.h"
#include "norv/simulator/MachineRecorder.h"
#include "norv/simulator/SimulatedMachine.h"
#include "record/Sha256.h"
#include "report/ReadReport.h"
#include "report/WriteReport.h"

namespace {

namespace fs = std::filesystem;
namespace tool = norv::tool;
using norv::simulator::MachineRecorder;
using norv::simulator::SimulatedMachine;
using norv::test::Require;

// The folder for temporary files of this process: what it holds was left behind.
class OwnTemporaryFolder {
 public:
  OwnTemporaryFolder() {
    std::string path = (fs::temp_directory_path() / "norv-fuzz-XXXXXX").string();
    Require(::mkdtemp(path.data()) != nullptr, "a folder for temporary files");
    path_ = path;
    ::setenv("TMPDIR", path.c_str(), 1);
  }
  OwnTemporaryFolder(const OwnTemporaryFolder&) = delete;
  OwnTemporaryFolder& operator=(const OwnTemporaryFolder&) = delete;
  ~OwnTemporaryFolder() { fs::remove_all(path_); }

  bool IsEmpty() const { return fs::is_empty(path_); }

 private:
  fs::path path_;
};

struct Told {
  std::string json;
  std::string text;
  std::string recording;
  std::string redacted;
};

// Nothing when the machine throws what the library was not asked for.
std::optional<Told> ReadAndRecord(const std::string& machineText, const tool::ReadOptions& options) {
  const auto machine = SimulatedMachine::FromText(machineText, "input");
  MachineRecorder recorder(norv::platform::Platform::Current());
  const norv::platform::ScopedPlatform scope(recorder);
  tool::Report report;
  try {
    report = tool::ReadReport({"file", "input", "", ""}, options);
  } catch (...) {
    return std::nullopt;
  }
  const norv::simulator::KeyedHash hash = [](const std::string& value) { return tool::KeyedSha256("key", value); };
  return Told{tool::JsonReport(report), tool::TextReport(report), recorder.MachineText({{"file", "input", ""}, {}}),
              recorder.MachineText({{"file", "input", ""}, hash})};
}

void RecordAndReplay(const std::string& machine, const tool::ReadOptions& options) {
  const auto told = ReadAndRecord(machine, options);
  if (!told) {
    return;
  }
  const auto replayed = ReadAndRecord(told->recording, options);
  Require(replayed.has_value(), "a recording that can be read");
  Require(replayed->json == told->json, "the same JSON report of the recording");
  Require(replayed->text == told->text, "the same text report of the recording");
  Require(ReadAndRecord(told->redacted, options).has_value(), "a redacted recording that can be read");
}

void Run(const char* command, const char* option, const std::string& machine) {
  const norv::test::InputFile file(reinterpret_cast<const std::uint8_t*>(machine.data()), machine.size());
  const std::string path = file.Path();
  const char* const arguments[] = {"norv-battery", command, "--machine", path.c_str(), option};
  const int status = tool::RunCommandLine(5, arguments);
  Require(status >= 0 && status <= 4, "a status of the command");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const OwnTemporaryFolder temporary;
  if (size == 0) {
    return 0;
  }
  const std::string machine = norv::json::Write(norv::test::MakeMachine(data, size - 1));
  try {
    SimulatedMachine::FromText(machine, "input");
  } catch (const norv::simulator::MachineFileError& refusal) {
    Require(std::string(refusal.what()).starts_with("input: "), "a refusal that names its file");
    return 0;
  }
  const std::uint8_t options = data[size - 1];
  RecordAndReplay(machine, {(options & 1U) != 0, (options & 2U) != 0});
  Run("encode", "--format=bin", machine);
  Run("watch", "--count=1", machine);
  Run("report", "--test", machine);
  Require(temporary.IsEmpty(), "no temporary folder left");
  return 0;
}
