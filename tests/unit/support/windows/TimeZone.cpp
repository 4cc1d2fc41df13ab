#include "unit/support/TimeZone.h"

#include <cstdlib>

namespace norv::test {

ScopedTimeZone::ScopedTimeZone(const char* zone) {
  if (const char* before = std::getenv("TZ")) {
    before_ = before;
  }
  _putenv_s("TZ", zone);
  _tzset();
}

ScopedTimeZone::~ScopedTimeZone() {
  _putenv_s("TZ", before_.value_or("").c_str());
  _tzset();
}

}  // namespace norv::test
