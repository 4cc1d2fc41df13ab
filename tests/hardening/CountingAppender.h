// A host's log that counts its lines.
#pragma once

#include <plog/Appenders/IAppender.h>

namespace norv::test {

class CountingAppender : public plog::IAppender {
 public:
  void write(const plog::Record& /*record*/) override { ++count_; }
  int Count() const { return count_; }

 private:
  int count_ = 0;
};

}  // namespace norv::test
