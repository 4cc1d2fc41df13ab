// Everything a record can answer, as a table.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "c-interface/Handles.h"
#include "c-interface/Interface.h"
#include "firmware/Block.h"
#include "norv/shared/error/Error.h"

namespace norv::shared::battery::c_interface {

// What a field answers. Of number, real and text one counts: the field's kind tells which.
struct Answer {
  norv_battery_state state = NORV_BATTERY_VALUE;
  std::int64_t number = 0;
  double real = 0;
  std::string text;  // UTF-8
};

struct FieldRow {
  norv_battery_field field;
  const char* name;
  norv_battery_kind kind;
  const char* unit;
  norv_battery_source source;
  firmware::Field place;  // in the source's block; of width 0 when it is not one place there
  int bit;                // of the word at `place`, or kNoBit
  Answer (*read)(const norv_battery_record& record);
};

inline constexpr int kNoBit = -1;

// All fields, in the order of their numbers.
std::span<const FieldRow> Fields();

// The row of a field; null when there is no such field.
const FieldRow* FindField(std::int32_t field);

// The answer of one of the battery test's fields, from the test itself.
Answer ReadTest(norv_battery_field field, const NorvBatteryTestInfo& test);

// Why a field is not what one would wish, where the record says so.
error::Error FieldFailure(const norv_battery_record& record, norv_battery_field field);

}  // namespace norv::shared::battery::c_interface
