// A record that has been asked for its validity and its age.
#pragma once

#include <cstddef>

#include "battery/NorvBatteryInfo.h"
#include "fields/Read.h"

namespace norv::tool {

// For the writer of battery fields: what a block says, read from the record as it is needed.
class AskedBattery {
 public:
  // Validity before age: the error that GetAge leaves would make the record invalid.
  // `told`, which may be null, outlives this.
  explicit AskedBattery(shared::battery::NorvBatteryInfo& info, const shared::battery::fields::Told* told = nullptr)
      : validity_(AskValidity(info)),
        age_(AskAge(info)),
        subject_{.info = &info, .told = told, .age = &age_, .validity = &validity_} {}

  AskedBattery(const AskedBattery&) = delete;
  AskedBattery& operator=(const AskedBattery&) = delete;
  ~AskedBattery() = default;

  // A dump has batteries' blocks, and nothing of the machines that they came from.
  static constexpr bool Has(const shared::battery::fields::Row& row) {
    return row.source == NORV_BATTERY_FROM_INFORMATION_BLOCK;
  }

  // The state of a text or of a number that is a word of the block makes no difference to what is written of it, and
  // takes as long to find as the answer itself.
  template <std::size_t kIndex>
  shared::battery::fields::Answer Get() const {
    constexpr const shared::battery::fields::Row& kRow = shared::battery::fields::kCatalogue[kIndex];
    constexpr auto kRead = kRow.read;
    constexpr auto kState = kRow.state;
    auto answer = kRead(kRow, subject_);
    if constexpr (kRow.kind == NORV_BATTERY_REAL || kRow.number == NORV_BATTERY_AGE) {
      answer.state = kState(subject_, answer);
    }
    return answer;
  }

  template <std::size_t kFirst>
  bool IsNull() const {
    return false;
  }

  template <std::size_t kFirst, typename Sink>
  void WriteBeyondCatalogue(Sink& /*sink*/) const {}

  const shared::error::Error* AgeFailure() const { return age_.failure ? &age_.failure : nullptr; }
  const shared::error::Error* ValidityFailure() const { return validity_.failure ? &validity_.failure : nullptr; }

  const shared::battery::fields::Subject& AsSubject() const { return subject_; }

 private:
  using Asked = shared::battery::fields::Asked;

  static Asked AskValidity(shared::battery::NorvBatteryInfo& info) {
    const bool isValid = info.IsValid();
    return {isValid ? 1 : 0, info.GetError()};
  }

  // Its failures name their operation. A defect that IsValid found does not, and stays where there is none.
  static Asked AskAge(shared::battery::NorvBatteryInfo& info) {
    const int age = info.GetAge();
    const shared::error::Error& failure = info.GetError();
    return {age, *failure.GetFunctionText() != '\0' ? failure : shared::error::Error()};
  }

  Asked validity_;
  Asked age_;
  shared::battery::fields::Subject subject_;
};

}  // namespace norv::tool
