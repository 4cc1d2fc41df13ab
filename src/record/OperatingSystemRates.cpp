#include "record/OperatingSystemRates.h"

#include <cstdint>
#include <new>
#include <string>

#include "norv/shared/wmi/WMIClient.h"

namespace norv::shared::battery::record {

namespace {

thread_local bool isLeftOut = false;

// Counts successful reads, not properties: it stops at an object after which they are exactly two, wherever they came
// from, and otherwise goes on to the last object. A later object overwrites an earlier one.
Rates Query() {
  constexpr int kEnoughReads = 2;
  Rates rates;
  // Kept, because every record asks the same: made anew each time they would take most of a record's memory requests.
  static const std::wstring namespacePath = L"\\\\.\\root\\wmi";
  static const std::wstring query = L"SELECT * FROM BatteryStatus";
  wmi::WMIClient client(namespacePath);
  if (client.Query(query) != 0) {
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

}  // namespace

WithoutOperatingSystemRates::WithoutOperatingSystemRates() {
  isLeftOut = true;
}

WithoutOperatingSystemRates::~WithoutOperatingSystemRates() {
  isLeftOut = false;
}

Rates ReadOperatingSystemRates() {
  if (isLeftOut) {
    return {};
  }
  try {
    return Query();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return {};
  }
}

}  // namespace norv::shared::battery::record
