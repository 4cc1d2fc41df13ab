// What one operation of a platform answered.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "calls/Thrown.h"
#include "firmware/Block.h"

namespace norv::simulator {

using firmware::Block;

// What LastSystemCode answered directly after an operation.
struct LeftCode {
  std::uint32_t code = 0;
  std::optional<Thrown> thrown;

  bool operator==(const LeftCode&) const = default;
};

// Which members mean something is the operation's business:
//
//   SendBiosCommand      number: the status; returnCode; block, where both are 0
//   ConnectWmi, Query    number: the code
//   RunProgram           fails
//   ReadProductVersion   text: "1.2.3.4", or fails
//   LibraryPath          text, number: the length that was told
//   ModuleName           text
//   ProgramDataFolder    fails where there is none; text: the report that lay in it
//   FormatSystemMessage  text, number: the length that was told, 0 for a failure
//   Now, LocalTimeValue, LastSystemCode   number
//   BatterySource        text
//   DriverStateOfCharge  number, or fails
struct Outcome {
  std::optional<Thrown> thrown;
  bool fails = false;
  std::int64_t number = 0;
  std::uint32_t returnCode = 0;
  std::optional<Block> block;
  std::optional<std::string> text;  // bytes
  std::optional<LeftCode> left;     // where LastSystemCode was asked

  bool operator==(const Outcome&) const = default;
};

// A property that was read as a text.
struct TextRead {
  std::int32_t code = 0;
  std::string value;  // bytes
  std::optional<Thrown> thrown;

  bool operator==(const TextRead&) const = default;
};

// A property that was read as a number; nothing where that failed.
struct NumberRead {
  std::optional<std::uint32_t> value;
  std::optional<Thrown> thrown;

  bool operator==(const NumberRead&) const = default;
};

// What the two ways of reading one property give.
struct PropertyReads {
  std::optional<TextRead> text;
  std::optional<NumberRead> number;

  bool operator==(const PropertyReads&) const = default;
};

}  // namespace norv::simulator
