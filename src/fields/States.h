// The rules by which an answer is a value, or what else it is.
#pragma once

#include "battery/NorvBatteryInfo.h"
#include "fields/Field.h"
#include "fields/Readers.h"
#include "firmware/BatteryInformationBlock.h"
#include "record/ManufacturerText.h"

namespace norv::shared::battery::fields {

inline norv_battery_state Always(const Subject& /*subject*/, const Answer& /*answer*/) {
  return NORV_BATTERY_VALUE;
}

inline norv_battery_state UnlessEmpty(const Subject& /*subject*/, const Answer& answer) {
  return answer.text.empty() ? NORV_BATTERY_ABSENT : NORV_BATTERY_VALUE;
}

// A code of the manufacturer text without a meaning.
inline norv_battery_state UnlessUnknown(const Subject& /*subject*/, const Answer& answer) {
  return answer.text == "UNKNOWN" ? NORV_BATTERY_UNKNOWN : NORV_BATTERY_VALUE;
}

// A month of 0 or above 12, or a day of 0, makes a date empty. No day is held against its month: 31 February stands.
inline norv_battery_state IfDate(const Subject& /*subject*/, const Answer& answer) {
  return answer.text.empty() ? NORV_BATTERY_INVALID : NORV_BATTERY_VALUE;
}

// Without a known warranty type the date was not moved and is no warranty's.
inline norv_battery_state IfWarrantyDate(const Subject& subject, const Answer& answer) {
  const norv_battery_state date = IfDate(subject, answer);
  return date == NORV_BATTERY_VALUE ? UnlessUnknown(subject, TextAnswer(subject.info->GetWarrantyType())) : date;
}

// No percentage is negative, but for the figure that stands for one that cannot be computed.
inline norv_battery_state IfComputable(const Subject& /*subject*/, const Answer& answer) {
  return answer.real < 0 ? NORV_BATTERY_INVALID : NORV_BATTERY_VALUE;
}

// A field that holds anything but letters and digits is no name.
inline norv_battery_state IfName(const Subject& subject, const Answer& answer) {
  const bool isOther =
      answer.text.empty() && !firmware::Text(BlockOf::Read(*subject.info), firmware::kDeviceName).empty();
  return isOther ? NORV_BATTERY_INVALID : UnlessEmpty(subject, answer);
}

// A decoded block need not be this machine's, so nobody was asked.
inline norv_battery_state IfAsked(const Subject& subject, const Answer& /*answer*/) {
  return subject.isDecoded ? NORV_BATTERY_ABSENT : NORV_BATTERY_VALUE;
}

// Codes 0 to 7 are the standard's, the rest is reserved.
inline norv_battery_state IfStandardCode(const Subject& subject, const Answer& /*answer*/) {
  constexpr int kLastCode = 7;
  return (subject.info->GetStatusWord() & 15) <= kLastCode ? NORV_BATTERY_VALUE : NORV_BATTERY_UNKNOWN;
}

// Where the serial number is empty there is nothing to count from; otherwise it does not end in a date.
inline norv_battery_state IfDated(const Subject& subject, const Answer& /*answer*/) {
  if (!subject.age->failure) {
    return NORV_BATTERY_VALUE;
  }
  return *subject.info->GetSerialNumber() == '\0' ? NORV_BATTERY_ABSENT : NORV_BATTERY_INVALID;
}

inline norv_battery_state IfLimit(const Subject& subject, const Answer& /*answer*/) {
  const auto limit =
      record::FindOverCurrentProtection(subject.info->GetManufacturer(), subject.info->GetDesignEnergyCapacity());
  return limit ? NORV_BATTERY_VALUE : NORV_BATTERY_UNKNOWN;
}

template <record::CtField kPart>
norv_battery_state IfLongEnough(const Subject& subject, const Answer& answer) {
  return record::FindCtField(subject.info->GetCtNumber(), kPart) ? UnlessEmpty(subject, answer) : NORV_BATTERY_ABSENT;
}

inline norv_battery_state IfCounted(const Subject& subject, const Answer& /*answer*/) {
  return subject.info->GetCellSwellProtectionInfo() != nullptr ? NORV_BATTERY_VALUE : NORV_BATTERY_ABSENT;
}

inline norv_battery_state IfTested(const Subject& subject, const Answer& /*answer*/) {
  constexpr int kNoVerdict = -1;
  if (ResultOf(subject) == kNoVerdict) {
    return NORV_BATTERY_ABSENT;
  }
  return LabelOf(subject) == "NOT_DEFINED" ? NORV_BATTERY_UNKNOWN : NORV_BATTERY_VALUE;
}

// The version is known as soon as the program was found, verdict or not.
inline norv_battery_state IfFound(const Subject& /*subject*/, const Answer& answer) {
  return answer.text.empty() || answer.text == "0.0.0.0" ? NORV_BATTERY_ABSENT : NORV_BATTERY_VALUE;
}

}  // namespace norv::shared::battery::fields
