// What a machine file says, read and checked.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "firmware/Commands.h"
#include "machine/Answer.h"
#include "norv/platform/Platform.h"
#include "norv/simulator/FaultInjector.h"
#include "norv/simulator/MachineRecorder.h"

namespace norv::simulator {

// What one BIOS command answers for one slot: a status, or a return code, or the block.
struct BlockAnswer {
  std::int32_t channelStatus = 0;
  std::uint32_t returnCode = 0;
  Block block{};
};

// An empty slot, until a machine file says otherwise.
struct SlotContents {
  BlockAnswer battery{0, firmware::kEmptySlot, {}};
  BlockAnswer cellSwell{0, firmware::kNoBattery, {}};
  platform::SlotDescription driver;  // but for the source, which is the machine's
};

struct ClassDescription {
  std::int32_t queryCode = 0;  // not 0: its queries fail
  std::vector<Row> rows;
};

struct NamespaceDescription {
  std::int32_t connectCode = 0;                     // not 0: connecting fails
  std::map<std::string, ClassDescription> classes;  // by folded class name
};

struct TestProgramDescription {
  std::optional<platform::ProductVersion> version;
  std::uint32_t startCode = 0;  // not 0: it cannot be started
  std::optional<std::string> report;
  std::chrono::milliseconds runs{0};
};

struct ProgramDataDescription {
  bool isPrivate = true;              // a folder of the machine's own, made when it is asked for
  std::optional<std::string> folder;  // otherwise this one, or none
};

struct MachineDescription {
  std::string description;
  std::string source;            // of the batteries, in a few words; empty where the file does not tell
  std::optional<Origin> origin;  // of a recording
  std::array<SlotContents, 2> slots;
  std::map<std::string, NamespaceDescription> namespaces;  // by NamespaceKey
  std::optional<TestProgramDescription> testProgram;
  ProgramDataDescription programData;
  std::map<std::uint32_t, std::string> systemMessages;
  std::optional<std::string> modulePath = "C:\\Program Files\\Norv\\norv-battery-info.dll";
  std::optional<std::time_t> now;  // the real clock otherwise
  int utcOffsetMinutes = 0;
  std::vector<Answer> answers;  // they come before what is described above
  std::vector<Fault> faults;
};

// The form in which namespace paths compare: "\\.\root\cimv2" and "ROOT/CIMV2" are one namespace.
std::string NamespaceKey(const std::string& path);

}  // namespace norv::simulator
