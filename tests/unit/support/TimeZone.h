// The process's time zone, and the clock, for a scope.
#pragma once

#include <ctime>
#include <optional>
#include <string>

#include "norv/platform/Platform.h"

namespace norv::test {

// Sets TZ to a zone in the form that needs no files: "CET-1CEST,M3.5.0,M10.5.0/3".
class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const char* zone);
  ScopedTimeZone(const ScopedTimeZone&) = delete;
  ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;
  ~ScopedTimeZone();

 private:
  std::optional<std::string> before_;
};

// The running system with another clock.
class ScopedClock : public platform::PlatformWrapper {
 public:
  explicit ScopedClock(std::time_t now) : PlatformWrapper(platform::Platform::Current()), now_(now), scope_(*this) {}
  std::time_t Now() override { return now_; }

 private:
  std::time_t now_;
  platform::ScopedPlatform scope_;
};

}  // namespace norv::test
