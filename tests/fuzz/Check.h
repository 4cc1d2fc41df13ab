// What a fuzz target does about a wrong answer: it stops where it stands, so that the input is kept.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace norv::test {

inline void Require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "wrong: %s\n", what);
    std::abort();
  }
}

}  // namespace norv::test
