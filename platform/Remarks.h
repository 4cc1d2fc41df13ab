// How a platform tells what its answers do not: that one is not quite what the system told, or why there is none.
#pragma once

#include <string_view>

namespace norv::platform {

enum class RemarkKind { Note, Failure };

// Hears what a platform remarks. A platform does not log: who asks it puts a listener in place and does that.
class RemarkListener {
 public:
  RemarkListener() = default;
  RemarkListener(const RemarkListener&) = delete;
  RemarkListener& operator=(const RemarkListener&) = delete;
  virtual ~RemarkListener();

  // One line of text. Not to throw.
  virtual void Hear(RemarkKind kind, std::string_view remark) = 0;
};

// Lets a listener hear what platforms remark on this thread for as long as the scope lives, then puts the one before it
// back. The listener outlives the scope.
class ScopedRemarkListener {
 public:
  explicit ScopedRemarkListener(RemarkListener& listener);
  ScopedRemarkListener(const ScopedRemarkListener&) = delete;
  ScopedRemarkListener& operator=(const ScopedRemarkListener&) = delete;
  ~ScopedRemarkListener();

 private:
  RemarkListener* previous_;
};

// Tells the listener, if there is one.
void Remark(RemarkKind kind, std::string_view remark);

}  // namespace norv::platform
