// The ways in which fields are read. Each leaves the state of its answer to the field's rule.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string_view>

#include "battery/NorvBatteryCellSwellProtectionInfo.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "fields/Field.h"
#include "firmware/BatteryInformationBlock.h"
#include "record/CtNumber.h"
#include "record/ManufacturerText.h"

namespace norv::shared::battery::fields {

constexpr Answer NumberAnswer(std::int64_t number) {
  return {.number = number};
}

constexpr Answer TextAnswer(std::string_view text) {
  return {.text = text};
}

struct BlockOf {
  static const unsigned char* Read(const NorvBatteryInfo& info) { return info.block_; }
};

// The word at a place of the battery-information block, where no accessor gives it.
inline Answer Word(const Row& row, const Subject& subject) {
  return NumberAnswer(firmware::Word(BlockOf::Read(*subject.info), row.place));
}

template <auto kGet>
Answer Number(const Row& /*row*/, const Subject& subject) {
  return NumberAnswer(std::invoke(kGet, *subject.info));
}

template <auto kGet>
Answer Real(const Row& /*row*/, const Subject& subject) {
  return {.real = static_cast<double>(std::invoke(kGet, *subject.info))};
}

template <auto kGet>
Answer Text(const Row& /*row*/, const Subject& subject) {
  return TextAnswer(std::invoke(kGet, *subject.info));
}

inline Answer CellVoltage(const Row& row, const Subject& subject) {
  std::array<int, firmware::kCellCount> voltages{};
  subject.info->GetCellVoltages(voltages.data());
  const std::size_t cell = (row.place.offset - firmware::kCellVoltages[0].offset) / row.place.width;
  return NumberAnswer(voltages[cell]);
}

inline Answer StatusErrorCode(const Row& /*row*/, const Subject& subject) {
  return TextAnswer(subject.info->GetStatus().errorCode);
}

inline Answer StatusFlag(const Row& row, const Subject& subject) {
  return NumberAnswer(subject.info->GetStatusWord() >> row.bit & 1);
}

inline Answer CalibrationType(const Row& /*row*/, const Subject& subject) {
  return TextAnswer(record::CalibrationType(subject.info->GetManufacturer()));
}

// The accessors of the CT number's parts share a buffer each with every thread; this does not.
template <record::CtField kPart>
Answer CtPart(const Row& /*row*/, const Subject& subject) {
  return TextAnswer(record::FindCtField(subject.info->GetCtNumber(), kPart).value_or(record::kNoCtField));
}

template <auto kGet>
Answer Counter(const Row& /*row*/, const Subject& subject) {
  const NorvBatteryCellSwellProtectionInfo* const counters = subject.info->GetCellSwellProtectionInfo();
  return NumberAnswer(counters != nullptr ? std::invoke(kGet, *counters) : 0);
}

// The battery test answers for itself what a record answers of it.
template <auto kOfRecord, auto kOfTest>
auto OfTest(const Subject& subject) {
  return subject.test != nullptr ? std::invoke(kOfTest, *subject.test) : std::invoke(kOfRecord, *subject.info);
}

inline int ResultOf(const Subject& subject) {
  return OfTest<&NorvBatteryInfo::GetBatteryTestResult, &NorvBatteryTestInfo::GetBatteryTestResult>(subject);
}

inline std::string_view LabelOf(const Subject& subject) {
  return OfTest<&NorvBatteryInfo::GetBatteryTestResultLabel, &NorvBatteryTestInfo::GetBatteryTestResultLabel>(subject);
}

inline Answer TestResult(const Row& /*row*/, const Subject& subject) {
  return NumberAnswer(ResultOf(subject));
}

inline Answer TestLabel(const Row& /*row*/, const Subject& subject) {
  return TextAnswer(LabelOf(subject));
}

inline Answer TestVersion(const Row& /*row*/, const Subject& subject) {
  return TextAnswer(
      OfTest<&NorvBatteryInfo::GetBatteryTestVersion, &NorvBatteryTestInfo::GetBatteryTestVersion>(subject));
}

inline Answer Age(const Row& /*row*/, const Subject& subject) {
  return NumberAnswer(subject.age->answer);
}

inline Answer Valid(const Row& /*row*/, const Subject& subject) {
  return NumberAnswer(subject.validity->answer);
}

}  // namespace norv::shared::battery::fields
