#include "record/Record.h"

#include <optional>

#include "ExitStatus.h"
#include "Machine.h"
#include "norv/simulator/MachineRecorder.h"
#include "output/OutputTarget.h"
#include "output/StandardStreams.h"
#include "record/Key.h"
#include "record/Sha256.h"
#include "report/EmptySlot.h"
#include "report/ReadReport.h"

namespace norv::tool {

namespace {

simulator::KeyedHash MakeHash(const std::string& key) {
  return [key](const std::string& value) { return KeyedSha256(key, value); };
}

// The key that was given, or one that is made and shown.
std::string ChooseKey(const std::optional<std::string>& given) {
  if (given.has_value()) {
    return *given;
  }
  std::string key = MakeKey();
  Complain("redacted with a key that was made for it: " + key +
           "\nKept in a file for --key-file, or in the environment variable " + kKeyVariable +
           ", it replaces the same numbers by the same ones in the next recording.");
  return key;
}

simulator::Origin OriginOf(const Source& source) {
  return {source.kind, source.name, source.description};
}

}  // namespace

int RunRecord(const RecordOptions& options) {
  // Before anything is read or written: a recording takes its time, and a wrong key file is found at once.
  const std::optional<std::string> key = options.redact ? GivenKey(options.keyFile) : std::nullopt;
  const Machine machine = ChooseMachine(options.machine, options.powerSupply);
  const auto output = OpenOutput(options.output);
  if (output == nullptr) {
    return kUnusable;
  }
  simulator::MachineRecorder recorder(platform::Platform::Current());
  Report report;
  {
    const platform::ScopedPlatform scope(recorder);
    report = ReadReport(machine.source, {options.cellSwell, options.test});
  }
  const std::string text =
      recorder.MachineText({OriginOf(machine.source), options.redact ? MakeHash(ChooseKey(key)) : nullptr});
  if (!output->Write(text) || !output->Complete()) {
    return kUnusable;
  }
  if (report.HasBattery()) {
    return kSuccess;
  }
  Complain(HasNoBattery(report) ? "the recorded machine has no battery"
                                : "no battery could be read; the recording holds why");
  return kNoBattery;
}

}  // namespace norv::tool
