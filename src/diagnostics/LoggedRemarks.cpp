#include "diagnostics/LoggedRemarks.h"

#include "base/Utf8.h"

namespace norv::shared::battery::diagnostics {

namespace {

using platform::BlockDeviates;
using platform::CapacitiesOfTheMoment;
using platform::DateLeftOut;
using platform::NumberClamped;
using platform::TextCut;
using platform::WmiTimedOut;
using std::to_string;

struct Words {
  std::string operator()(const NumberClamped& number) const {
    return std::string("the ") + number.field + " " + to_string(number.told) +
           " does not fit: " + to_string(number.stored) + " stands for it";
  }
  std::string operator()(const TextCut& text) const {
    return std::string("the ") + text.field + " \"" + text.told + "\" is cut to its first " + to_string(text.stored) +
           " bytes; its field has " + to_string(text.width);
  }
  std::string operator()(const DateLeftOut& date) const {
    return "the manufacture date " + to_string(date.year) + "-" + to_string(date.month) + "-" + to_string(date.day) +
           " is none that a battery can tell, and is left out";
  }
  std::string operator()(const CapacitiesOfTheMoment& capacities) const {
    return "no design voltage is known; the capacities are the driver's energies at the voltage of the moment, " +
           to_string(capacities.voltage) + " mV";
  }
};

}  // namespace

std::string InWords(const platform::Deviation& deviation) {
  return std::visit(Words(), deviation);
}

namespace {

// A block that deviates is an answer all the same; where WMI gave none, something is missing.
struct LogLineOf {
  const Operation& operation;

  void operator()(const BlockDeviates& block) const {
    operation.Log(Severity::Info, {"Battery index ", to_string(block.slot), ": ", InWords(block.deviation)});
  }
  void operator()(const WmiTimedOut& wmi) const {
    operation.Log(Severity::Error, {"WMI has not answered within ", to_string(wmi.patience.count()),
                                    " ms: ", base::WideToUtf8(wmi.query)});
  }
};

}  // namespace

void LoggedRemarks::Hear(const platform::Remark& remark) {
  std::visit(LogLineOf{operation_}, remark);
}

}  // namespace norv::shared::battery::diagnostics
