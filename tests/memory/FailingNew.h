// An ordinary allocator of which one allocation can be made to fail.
#pragma once

#include <cstddef>

namespace norv::test {

// From now on the `count`-th allocation of this thread, counted from 0, throws std::bad_alloc; all others succeed.
void FailAllocation(std::size_t count);

// Ends that. True when the allocation was reached, and failed.
bool StopFailing();

}  // namespace norv::test
