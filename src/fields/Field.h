// What there is to know of a field of a battery, and what one answers.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "battery/norv_battery.h"
#include "firmware/Block.h"
#include "norv/shared/error/Error.h"

namespace norv::shared::battery {

class NorvBatteryInfo;
class NorvBatteryTestInfo;

namespace fields {

// What a field answers. Of number, real and text one counts: the field's kind tells which. In every state it is what
// the accessor of the C++ interface answers.
struct Answer {
  norv_battery_state state = NORV_BATTERY_VALUE;
  std::int64_t number = 0;
  double real = 0;
  std::string_view text{};  // the record's, or a constant; what it is written in, IsUtf8 tells
};

// A question whose answer the record keeps a failure of.
struct Asked {
  std::int64_t answer = 0;
  error::Error failure;
};

// The bytes of the battery-information block that its source told.
using Told = std::bitset<firmware::kBlockSize>;

// What fields are read from: a record, or of the battery test's fields the test itself.
struct Subject {
  NorvBatteryInfo* info = nullptr;
  const NorvBatteryTestInfo* test = nullptr;  // null: the record's verdict
  bool isDecoded = false;                     // of a block that need not be this machine's
  const Told* told = nullptr;                 // null: all
  // Asking a record for its age changes what it says of its validity. Whoever reads one of these two asks first.
  const Asked* age = nullptr;
  const Asked* validity = nullptr;
};

// Fields that people look at together.
struct Group {
  const char* key;    // of the JSON object they lie in; "status.flags" lies in "status"
  const char* label;  // for people

  // By what they are: with sanitizers, the addresses of two groups are no constants to compare.
  friend constexpr bool operator==(const Group& left, const Group& right) {
    return std::string_view(left.key) == right.key;
  }
};

inline constexpr int kNoBit = -1;

struct Row {
  norv_battery_field number{};
  const char* key = nullptr;  // in its group's object; "voltages[0]" is an item of the list "voltages"
  const Group* group = nullptr;
  const char* name = nullptr;
  const char* label = nullptr;  // for people
  norv_battery_kind kind{};
  const char* unit = nullptr;
  norv_battery_source source{};
  firmware::Field place{};  // in the source's block; of width 0 when it is not one place there
  int bit = kNoBit;         // of the word at `place`, or kNoBit
  Answer (*read)(const Row& row, const Subject& subject) = nullptr;
  norv_battery_state (*state)(const Subject& subject, const Answer& answer) = nullptr;
};

// "voltages" of "voltages[0]", "flags" of "status.flags".
constexpr std::string_view BareKey(std::string_view key) {
  key = key.substr(0, key.find('['));
  return key.substr(key.rfind('.') + 1);
}

// The place of an item in its list; nothing for a field that is in none.
constexpr std::optional<std::size_t> ItemIndex(const Row& row) {
  const std::string_view key = row.key;
  const std::size_t bracket = key.find('[');
  return bracket != std::string_view::npos ? std::optional(static_cast<std::size_t>(key[bracket + 1] - '0'))
                                           : std::nullopt;
}

// The BIOS settings come as UTF-8. Other texts are bytes without a stated encoding: each stands for the character of
// its number.
constexpr bool IsUtf8(const Row& row) {
  return row.source == NORV_BATTERY_FROM_BIOS_SETTINGS;
}

}  // namespace fields
}  // namespace norv::shared::battery
