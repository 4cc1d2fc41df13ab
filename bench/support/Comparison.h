// The library's record and the plain one, value by value.
#pragma once

#include <ctime>
#include <optional>
#include <string>

#include "Blocks.h"
#include "plain/PlainRecord.h"

namespace norv::bench {

// What the library's record of `block` answers. Any thread may ask; the platform must be one whose clock stands at
// `now`.
plain::PlainRecord ReadLibraryRecord(const unsigned char* block);

// The block in hex digits and its first value in which `library` differs from `expected`; nothing when there is none.
std::optional<std::string> Difference(const Block& block, const plain::PlainRecord& library,
                                      const plain::PlainRecord& expected);

}  // namespace norv::bench
