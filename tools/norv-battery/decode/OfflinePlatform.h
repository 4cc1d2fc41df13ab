#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <ctime>
#include <memory>
#include <optional>
#include <string>

#include "Day.h"
#include "norv/platform/Platform.h"

namespace norv::tool {

// The machine that saved blocks are decoded on, whichever machine they came from: WMI gives no rates, and the clock
// stands still, so that all rows of a run count their ages up to the same moment.
class OfflinePlatform : public platform::PlatformWrapper {
 public:
  // `today`, when given, is the day that ages are counted up to; otherwise it is now.
  OfflinePlatform(platform::Platform& inner, const std::optional<Day>& today);

  long ConnectWmi(const std::wstring& namespacePath, std::unique_ptr<platform::WmiConnection>& connection) override;
  std::time_t Now() override { return now_; }
  std::time_t LocalTimeValue(const std::tm& calendarTime) override;

 private:
  static constexpr std::size_t kDays = std::size_t{100} * 12 * 31;
  // The days of 2000 to 2099, and a last place for the calendar time without a date. 0 stands for what was not yet
  // asked for: the system is slow to answer, and batteries come in lots of the same few days.
  using TimeValues = std::array<std::atomic<std::time_t>, kDays + 1>;

  static std::optional<std::size_t> PlaceOf(const std::tm& calendarTime);

  std::unique_ptr<TimeValues> timeValues_ = std::make_unique<TimeValues>();
  std::time_t now_;
};

}  // namespace norv::tool
