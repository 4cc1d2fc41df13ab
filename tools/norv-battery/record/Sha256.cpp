#include "record/Sha256.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace norv::tool {

namespace {

constexpr std::size_t kMessageBlock = 64;

using State = std::array<std::uint32_t, 8>;

constexpr State kFirstState = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                               0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

constexpr std::array<std::uint32_t, 64> kRoundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

using Schedule = std::array<std::uint32_t, 64>;

// The words of a block, big-endian, and those that follow from them.
Schedule MakeSchedule(std::string_view block) {
  Schedule words{};
  for (std::size_t i = 0; i < 16; ++i) {
    for (std::size_t byte = 0; byte < 4; ++byte) {
      words.at(i) = (words.at(i) << 8) | static_cast<unsigned char>(block[4 * i + byte]);
    }
  }
  for (std::size_t i = 16; i < words.size(); ++i) {
    const std::uint32_t early = words.at(i - 15);
    const std::uint32_t late = words.at(i - 2);
    const std::uint32_t first = std::rotr(early, 7) ^ std::rotr(early, 18) ^ (early >> 3);
    const std::uint32_t second = std::rotr(late, 17) ^ std::rotr(late, 19) ^ (late >> 10);
    words.at(i) = words.at(i - 16) + first + words.at(i - 7) + second;
  }
  return words;
}

void TakeBlock(std::string_view block, State& state) {
  const Schedule words = MakeSchedule(block);
  auto [a, b, c, d, e, f, g, h] = state;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::uint32_t sum1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
    const std::uint32_t choice = (e & f) ^ (~e & g);
    const std::uint32_t first = h + sum1 + choice + kRoundConstants.at(i) + words.at(i);
    const std::uint32_t sum0 = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
    const std::uint32_t majority = (a & b) ^ (a & c) ^ (b & c);
    h = g;
    g = f;
    f = e;
    e = d + first;
    d = c;
    c = b;
    b = a;
    a = first + sum0 + majority;
  }
  const State added = {a, b, c, d, e, f, g, h};
  std::transform(state.begin(), state.end(), added.begin(), state.begin(), std::plus<>());
}

// A one bit, zeros, and the length in bits in eight bytes fill the last block.
std::string Padded(std::string_view message) {
  std::string padded(message);
  padded.push_back('\x80');
  while (padded.size() % kMessageBlock != kMessageBlock - 8) {
    padded.push_back('\0');
  }
  const std::uint64_t bits = std::uint64_t{message.size()} * 8;
  for (int shift = 56; shift >= 0; shift -= 8) {
    padded.push_back(static_cast<char>(static_cast<unsigned char>(bits >> shift)));
  }
  return padded;
}

std::string Xored(const std::string& key, unsigned char pad) {
  std::string result = key;
  std::transform(result.begin(), result.end(), result.begin(),
                 [pad](char c) { return static_cast<char>(static_cast<unsigned char>(c) ^ pad); });
  return result;
}

std::string ToText(const Digest& digest) {
  return {digest.begin(), digest.end()};
}

}  // namespace

Digest Sha256(std::string_view message) {
  const std::string padded = Padded(message);
  State state = kFirstState;
  for (std::size_t start = 0; start < padded.size(); start += kMessageBlock) {
    TakeBlock(std::string_view(padded).substr(start, kMessageBlock), state);
  }
  Digest digest{};
  for (std::size_t i = 0; i < digest.size(); ++i) {
    digest.at(i) = static_cast<unsigned char>(state.at(i / 4) >> (24 - 8 * (i % 4)));
  }
  return digest;
}

Digest KeyedSha256(std::string_view key, std::string_view message) {
  constexpr unsigned char kInnerPad = 0x36;
  constexpr unsigned char kOuterPad = 0x5c;
  std::string block = key.size() > kMessageBlock ? ToText(Sha256(key)) : std::string(key);
  block.resize(kMessageBlock, '\0');
  const Digest inner = Sha256(Xored(block, kInnerPad) + std::string(message));
  return Sha256(Xored(block, kOuterPad) + ToText(inner));
}

}  // namespace norv::tool
