#include "recording/Record.h"

#include <array>
#include <cstdio>
#include <random>

#include "ExitStatus.h"
#include "Machine.h"
#include "OutputTarget.h"
#include "ReadReport.h"
#include "StandardStreams.h"
#include "norv/simulator/MachineRecorder.h"
#include "recording/Sha256.h"

namespace norv::tool {

namespace {

// 128 bits of the system's randomness, in hex digits.
std::string MakeKey() {
  std::random_device random;
  std::string key;
  for (int i = 0; i < 4; ++i) {
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "%08x", random());
    key += digits.data();
  }
  return key;
}

simulator::KeyedHash MakeHash(const RecordOptions& options) {
  if (!options.redact) {
    return nullptr;
  }
  const std::string key = options.key ? *options.key : MakeKey();
  if (!options.key) {
    Complain("redacted with the key " + key + " (give it to the next recording, as --key " + key +
             ", and the same numbers are replaced by the same ones)");
  }
  return [key](const std::string& value) { return KeyedSha256(key, value); };
}

simulator::Origin OriginOf(const Source& source) {
  return {source.kind, source.name, source.description};
}

}  // namespace

int RunRecord(const RecordOptions& options) {
  const Machine machine = ChooseMachine(options.machine, options.folder);
  const auto output = OpenOutput(options.output);
  if (output == nullptr) {
    return kUnusable;
  }
  simulator::MachineRecorder recorder(platform::Platform::Current());
  bool hasBattery = false;
  {
    const platform::ScopedPlatform scope(recorder);
    hasBattery = ReadReport(machine.source, {options.cellSwell, options.test}).HasBattery();
  }
  const std::string text = recorder.MachineText({OriginOf(machine.source), MakeHash(options)});
  if (!output->Write(text) || !output->Complete()) {
    return kUnusable;
  }
  if (!hasBattery) {
    Complain("no battery could be read; the recording holds why");
  }
  return hasBattery ? kSuccess : kNoBattery;
}

}  // namespace norv::tool
