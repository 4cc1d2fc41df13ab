// What a platform's answers do not tell: that one is not quite what the system told, or why there is none.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

namespace norv::platform {

// WMI was waited for so long and gave no object of the query.
struct WmiTimedOut {
  std::chrono::milliseconds patience;
  std::wstring query;
};

// What stands in a battery-information block otherwise than the driver told it. A field goes by its own name.
struct NumberClamped {
  const char* field;
  std::int64_t told;
  std::int64_t stored;
};
struct TextCut {
  const char* field;
  std::string told;
  std::size_t stored;  // bytes
  std::size_t width;
};
struct DateLeftOut {
  std::int64_t year;
  std::int64_t month;
  std::int64_t day;
};
struct CapacitiesOfTheMoment {
  std::int64_t voltage;  // mV, at which the driver's energies were made charges
};
using Deviation = std::variant<NumberClamped, TextCut, DateLeftOut, CapacitiesOfTheMoment>;

struct BlockDeviates {
  std::uint32_t slot;
  Deviation deviation;
};

using Remark = std::variant<WmiTimedOut, BlockDeviates>;

// A platform does not log: who asks it listens (Listening<RemarkListener>) and finds the words.
class RemarkListener {
 public:
  RemarkListener() = default;
  RemarkListener(const RemarkListener&) = delete;
  RemarkListener& operator=(const RemarkListener&) = delete;
  virtual ~RemarkListener();

  // Throws nothing but std::bad_alloc.
  virtual void Hear(const Remark& remark) = 0;

  static RemarkListener*& Current();
};

// Tells the listener, if there is one.
void Tell(const Remark& remark);

}  // namespace norv::platform
