// The catalogue's fields, as a C host reads them.
#pragma once

#include <cstdint>
#include <string>

#include "c-interface/Handles.h"
#include "c-interface/Interface.h"
#include "fields/Field.h"
#include "norv/shared/error/Error.h"

namespace norv::shared::battery::c_interface {

// An answer and the value as a UTF-8 text, whatever its kind.
struct Reading {
  norv_battery_state state = NORV_BATTERY_VALUE;
  std::int64_t number = 0;
  double real = 0;
  std::string text;
};

// The row of a field; null when there is no such field.
const fields::Row* FindField(std::int32_t field);

Reading ReadField(const norv_battery_record& record, const fields::Row& row);

// One of the battery test's fields, from the test itself.
Reading ReadField(const NorvBatteryTestInfo& test, const fields::Row& row);

// Why a field is not what one would wish, where the record says so.
error::Error FieldFailure(const norv_battery_record& record, norv_battery_field field);

}  // namespace norv::shared::battery::c_interface
