#include "c-interface/Fields.h"

#include <array>
#include <charconv>
#include <new>
#include <string_view>

#include "base/Utf8.h"
#include "diagnostics/MemoryWatch.h"
#include "fields/Read.h"

namespace norv::shared::battery::c_interface {

using fields::Asked;
using fields::kCatalogue;
using fields::Row;
using fields::Subject;

namespace {

// A row is found by its number, and its texts fit the host's structure.
constexpr bool IsInOrder() {
  std::int32_t number = 0;
  for (const Row& row : kCatalogue) {
    const auto fits = [](std::string_view text, std::size_t size) { return text.size() < size; };
    if (row.number != ++number || !fits(row.name, sizeof norv_battery_description::name) ||
        !fits(row.unit, sizeof norv_battery_description::unit) ||
        !fits(row.key, sizeof norv_battery_description::key) ||
        !fits(row.group->key, sizeof norv_battery_description::group) ||
        !fits(row.label, sizeof norv_battery_description::label)) {
      return false;
    }
  }
  return true;
}
static_assert(IsInOrder());

// Age and validity write the record's error, and validity reads it. A copy shares the record's texts and has an error
// of its own; the record itself is never asked, so that its error stays empty.
template <typename Ask>
Asked AskCopy(const norv_battery_record& record, Ask ask) {
  const diagnostics::MemoryWatch memory;
  NorvBatteryInfo copy(*record.info);
  const std::int64_t answer = ask(copy);
  if (memory.RanOut()) {
    throw std::bad_alloc();
  }
  return {answer, copy.GetError()};
}

// What only the record's own error tells of a field; nothing of any other.
Asked AskFor(const norv_battery_record& record, norv_battery_field field) {
  switch (field) {
    case NORV_BATTERY_AGE:
      return AskCopy(record, [](NorvBatteryInfo& copy) { return copy.GetAge(); });
    case NORV_BATTERY_VALID:
      return AskCopy(record, [](NorvBatteryInfo& copy) { return copy.IsValid() ? 1 : 0; });
    default:
      return {};
  }
}

// Independent of the process's locale, which printf is not.
template <typename Value, typename... Format>
std::string FormatNumber(Value value, Format... format) {
  std::array<char, 400> digits{};  // a double has up to 309 before its point
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, format...).ptr;
  return {digits.data(), end};
}

std::string FormatAnswer(const Row& row, const fields::Answer& answer) {
  switch (row.kind) {
    case NORV_BATTERY_NUMBER:
      return FormatNumber(answer.number);
    case NORV_BATTERY_REAL:
      return FormatNumber(answer.real, std::chars_format::fixed, 3);
    case NORV_BATTERY_FLAG:
      return answer.number != 0 ? "true" : "false";
    default:
      return fields::IsUtf8(row) ? base::ValidUtf8(answer.text) : base::BytesToUtf8(answer.text);
  }
}

Reading ReadSubject(const Subject& subject, const Row& row) {
  const fields::Answer answer = fields::Read(row, subject);
  return {answer.state, answer.number, answer.real, FormatAnswer(row, answer)};
}

}  // namespace

const Row* FindField(std::int32_t field) {
  const bool isKnown = field >= 1 && static_cast<std::size_t>(field) <= kCatalogue.size();
  return isKnown ? &kCatalogue[static_cast<std::size_t>(field) - 1] : nullptr;
}

Reading ReadField(const norv_battery_record& record, const Row& row) {
  const Asked asked = AskFor(record, row.number);
  return ReadSubject({.info = record.info,
                      .isDecoded = record.IsDecoded(),
                      .told = record.told ? &*record.told : nullptr,
                      .age = &asked,
                      .validity = &asked},
                     row);
}

Reading ReadField(const NorvBatteryTestInfo& test, const Row& row) {
  return ReadSubject({.test = &test}, row);
}

error::Error FieldFailure(const norv_battery_record& record, norv_battery_field field) {
  return AskFor(record, field).failure;
}

}  // namespace norv::shared::battery::c_interface
