// An ordinary allocator of which one allocation can be made to fail. What it hands out was used before.
#pragma once

#include <cstddef>

namespace norv::test {

// What all its memory holds at first.
constexpr unsigned char kOldByte = 0xAA;

// From now on the `count`-th allocation of this thread, counted from 0, throws std::bad_alloc; all others succeed.
void FailAllocation(std::size_t count);

// Ends that. True when the allocation was reached, and failed.
bool StopFailing();

}  // namespace norv::test
