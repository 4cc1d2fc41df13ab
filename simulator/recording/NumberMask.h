// Replaces a number by another one of the same shape, so that two numbers never become one.
//
// A place of a number is one of its characters that is a digit, a capital, a small letter or a byte outside ASCII;
// every other character stays. Numbers with the same classes at the same places, and the same characters elsewhere,
// have the same shape. MaskedNumber() is a permutation of the numbers of each shape, another one for each key: a
// Feistel network over the places, as the one of format-preserving encryption (FF1 in NIST SP 800-38G), with its ten
// rounds. It differs in two things. Each half is added to place by place, modulo the size of the place's class, and not
// as one long number, so that places may differ in their classes. And what is added comes from the keyed hash, which
// takes the shape, the round and the other half.
//
// A round changes one half by something that depends on the other half alone, and so can be taken back. That makes the
// whole a permutation whatever the hash gives; the hash decides only how well it hides.
#pragma once

#include <cstddef>
#include <string>

#include "norv/simulator/MachineRecorder.h"

namespace norv::simulator {

// How many characters at both ends of a number stay as they are. They belong to its shape.
struct KeptEnds {
  std::size_t first = 0;
  std::size_t last = 0;
};

// Numbers under different labels have nothing to do with one another.
std::string MaskedNumber(std::string number, const KeptEnds& kept, const std::string& label, const KeyedHash& hash);

}  // namespace norv::simulator
