// Blocks to decode.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "firmware/Block.h"

namespace norv::bench {

using firmware::Block;

// Makes blocks without end, the same ones for the same seed on every system.
class BlockGenerator {
 public:
  explicit BlockGenerator(std::uint64_t seed) : random_(seed) {}

  // What a battery in order would have.
  Block Likely();

  // Anything: texts of every shape and nearly so, dates at their edges, and now and then 128 bytes of noise.
  Block Odd();

 private:
  // Below `bound`.
  std::uint32_t Below(std::uint32_t bound);
  bool OneIn(std::uint32_t chances) { return Below(chances) == 0; }
  char Pick(const char* characters, std::size_t count);
  void PutText(Block& block, firmware::Field field, const char* layout);
  void PutSerialNumber(Block& block);
  void PutOddTexts(Block& block);
  void Spoil(Block& block, firmware::Field field);

  std::mt19937_64 random_;
};

// The blocks of all batteries of the sample machines.
std::vector<Block> SampleBlocks();

}  // namespace norv::bench
