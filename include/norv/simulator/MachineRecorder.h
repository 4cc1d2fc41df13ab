// Records a machine into a machine file.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "norv/platform/Platform.h"

namespace norv::simulator {

// Which machine a recording was made of. A report of the recording names that machine, and not the file.
struct Origin {
  std::string kind = "machine";  // "machine" (the running one), "sample", "file"; "folder", "listing" (of a driver)
  std::string name;              // of the sample, file, folder or listing; empty for the running machine
  std::string description;       // one line, or empty
};

// 32 bytes that nobody without the key can foresee or lead back to `value`; the same for the same value.
using KeyedHash = std::function<std::array<unsigned char, 32>(const std::string& value)>;

struct RecordingOptions {
  Origin origin;
  // Makes the recording one that gives nothing away of whose machine it is of, if it is set: only what the library asks
  // is kept, and of the answers only numbers, codes and the texts that decoding needs. Any other text keeps its length
  // and its line ends, with an x for each other byte. Serial and CT numbers become others of the same length and shape,
  // the same for the same number and hash, and never the same for two numbers. The date at the end of a serial number
  // and the first ten characters of a CT number, which tell its assembly, revision, supplier and week, stay.
  KeyedHash hash;
};

// Hands everything on to any other platform and keeps what it answered. The other platform must outlive the recorder; a
// connection may outlive both.
//
//   norv::simulator::MachineRecorder recorder(norv::platform::Platform::Current());
//   {
//     norv::platform::ScopedPlatform scope(recorder);
//     norv::shared::battery::NorvBatteries batteries(true, true);
//   }
//   std::ofstream("notebook.json", std::ios::binary) << recorder.MachineText();
//
// A SimulatedMachine made from the text answers whoever asks the same once more with the same answers, calls that
// failed or threw included. The report that a battery test program leaves is kept when the program-data folder is asked
// for. Threads: as for every platform.
class MachineRecorder : public platform::PlatformWrapper {
 public:
  explicit MachineRecorder(platform::Platform& inner);
  ~MachineRecorder() override;

  // The machine file of everything asked so far, in UTF-8. To be called while no other thread uses the platform.
  std::string MachineText(const RecordingOptions& options = {}) const;

 private:
  struct Parts;
  explicit MachineRecorder(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> parts_;
};

}  // namespace norv::simulator
