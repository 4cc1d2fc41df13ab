#include "record/OperatingSystemRates.h"

#include <cstdint>
#include <new>
#include <string>

#include "norv/shared/wmi/WMIClient.h"

namespace norv::shared::battery::record {

namespace {

// Plain data, which outlives the kept question: a host's own static objects may ask when that is gone.
bool isKeptQuestionGone = false;

struct Question {
  Question() = default;
  Question(const Question&) = delete;
  Question& operator=(const Question&) = delete;
  ~Question() { isKeptQuestionGone = true; }

  std::wstring namespacePath = L"\\\\.\\root\\wmi";
  std::wstring query = L"SELECT * FROM BatteryStatus";
};

// Counts successful reads, not properties: it stops at an object after which they are exactly two, wherever they came
// from, and otherwise goes on to the last object. A later object overwrites an earlier one.
Rates Ask(const Question& question) {
  constexpr int kEnoughReads = 2;
  Rates rates;
  wmi::WMIClient client(question.namespacePath);
  if (client.Query(question.query) != 0) {
    return rates;
  }
  int reads = 0;
  while (reads != kEnoughReads && client.GetNext()) {
    std::uint32_t value = 0;
    if (client.GetUInt32(L"ChargeRate", value)) {
      rates.charge = value;
      ++reads;
    }
    if (client.GetUInt32(L"DischargeRate", value)) {
      rates.discharge = value;
      ++reads;
    }
  }
  return rates;
}

// Every record asks the same: made anew each time the question would take most of a record's memory requests.
Rates Query() {
  if (isKeptQuestionGone) {
    return Ask(Question());
  }
  static const Question kept;
  return Ask(kept);
}

}  // namespace

Rates ReadOperatingSystemRates() {
  try {
    return Query();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return {};
  }
}

}  // namespace norv::shared::battery::record
