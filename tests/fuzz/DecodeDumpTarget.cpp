// Any file as hex dumps of saved blocks: every row is right or says what is wrong, and a good one can be had back.
#include <cstddef>
#include <cstdint>

#include "fuzz/Rows.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  norv::test::DecodeAndCheck(data, size, norv::tool::InputKind::Dump);
  return 0;
}
