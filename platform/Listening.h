// Who hears what happens on a thread.
#pragma once

#include <utility>

namespace norv::platform {

// Lets `listener` hear what happens on this thread for as long as the scope lives, then puts the one before it back.
// The listener outlives the scope; a null pointer hears nothing. `Listener::Current()` is the thread's pointer to its
// own.
template <typename Listener>
class Listening {
 public:
  explicit Listening(Listener* listener) : previous_(std::exchange(Listener::Current(), listener)) {}
  Listening(const Listening&) = delete;
  Listening& operator=(const Listening&) = delete;
  ~Listening() { Listener::Current() = previous_; }

 private:
  Listener* previous_;
};

}  // namespace norv::platform
