// What one operation of a platform answered.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "calls/Thrown.h"
#include "firmware/Block.h"
#include "norv/platform/Platform.h"

namespace norv::simulator {

using firmware::Block;

// What LastSystemCode answered directly after an operation.
struct LeftCode {
  std::uint32_t code = 0;
  std::optional<Thrown> thrown;

  bool operator==(const LeftCode&) const = default;
};

// Which members mean something is told by the AnswerForm of the operation.
struct Outcome {
  std::optional<Thrown> thrown;
  bool fails = false;
  std::int64_t number = 0;
  std::uint32_t returnCode = 0;
  std::optional<Block> block;
  std::optional<std::string> text;  // bytes
  std::optional<platform::SlotDescription> slot;
  std::optional<LeftCode> left;  // where LastSystemCode was asked, or is to be answered by it

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
