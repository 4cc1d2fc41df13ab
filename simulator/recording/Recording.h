// What a recorder keeps.
#pragma once

#include <array>
#include <cstdint>
#include <ctime>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "calls/Outcome.h"

namespace norv::simulator {

using RecordedRow = std::map<std::string, PropertyReads>;  // by the property's name as it was asked for

struct RecordedCall {
  std::string operation;
  std::string argument;      // as Operation has it, in UTF-8
  std::string wmiNamespace;  // of a query
  std::string folder;        // what ProgramDataFolder gave
  std::array<std::uint32_t, 3> command{};
  std::vector<unsigned char> input;
  std::string path;        // RunProgram, ReadProductVersion
  std::uint32_t size = 0;  // of the buffer of LibraryPath and FormatSystemMessage
  std::uint32_t code = 0;  // FormatSystemMessage
  std::tm calendarTime{};  // LocalTimeValue
  std::uint32_t slot = 0;  // DriverStateOfCharge

  Outcome outcome;
  std::vector<RecordedRow> rows;  // the objects of a query that were looked at
  bool ended = false;             // there was none after them
  std::optional<Thrown> end;      // what asking for one after them threw
};

// Everything that the recorder kept.
class MachineRecorder;
std::vector<RecordedCall> RecordedCalls(const MachineRecorder& recorder);

// The input of a BIOS command in hex digits; empty where it holds nothing but the slot, as the argument names it.
std::string ExtraInput(std::span<const unsigned char> input);

// Calls with the same key ask for the same.
std::string CallKey(const std::string& operation, const std::string& argument, const std::string& wmiNamespace,
                    const std::string& extraInput);
std::string CallKey(const RecordedCall& call);

}  // namespace norv::simulator
