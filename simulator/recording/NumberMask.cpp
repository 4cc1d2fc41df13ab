#include "recording/NumberMask.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace norv::simulator {

namespace {

constexpr int kRounds = 10;

// Characters that stand for one another.
struct CharacterClass {
  unsigned char first;
  std::uint32_t size;
};

constexpr std::array<CharacterClass, 4> kClasses{{{'0', 10}, {'A', 26}, {'a', 26}, {0x80, 128}}};

struct Place {
  std::size_t position;
  CharacterClass kind;
};

using Places = std::span<const Place>;

std::uint32_t ValueAt(const std::string& number, std::size_t position, const CharacterClass& kind) {
  return static_cast<std::uint32_t>(static_cast<unsigned char>(number[position])) - kind.first;
}

std::vector<Place> PlacesOf(const std::string& number, const KeptEnds& kept) {
  std::vector<Place> places;
  for (std::size_t position = kept.first; position + kept.last < number.size(); ++position) {
    for (const CharacterClass& kind : kClasses) {
      if (ValueAt(number, position, kind) < kind.size) {
        places.push_back({position, kind});
      }
    }
  }
  return places;
}

void SetAt(std::string& number, const Place& place, std::uint32_t value) {
  number[place.position] = static_cast<char>(static_cast<unsigned char>(place.kind.first + value));
}

// The number with the first of its class at each place, which is the same for all numbers of its shape.
std::string ShapeOf(std::string number, Places places) {
  for (const Place& place : places) {
    SetAt(number, place, 0);
  }
  return number;
}

std::string CharactersAt(const std::string& number, Places places) {
  std::string characters;
  for (const Place& place : places) {
    characters.push_back(number[place.position]);
  }
  return characters;
}

// Numbers that hang on `message` and the key, without an end: a hash gives eight of 32 bits.
class Stream {
 public:
  Stream(std::string message, const KeyedHash& hash) : message_(std::move(message)), hash_(hash) {}

  std::uint32_t Next() {
    const std::size_t place = taken_++ * kWidth % bytes_.size();
    if (place == 0) {
      bytes_ = hash_(message_ + std::to_string(taken_));
    }
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < kWidth; ++i) {
      number = (number << 8) | bytes_.at(place + i);
    }
    return number;
  }

 private:
  static constexpr std::size_t kWidth = 4;

  std::string message_;
  const KeyedHash& hash_;
  std::array<unsigned char, 32> bytes_{};
  std::size_t taken_ = 0;
};

void AddTo(std::string& number, Places places, Stream stream) {
  for (const Place& place : places) {
    SetAt(number, place,
          (ValueAt(number, place.position, place.kind) + stream.Next() % place.kind.size) % place.kind.size);
  }
}

}  // namespace

std::string MaskedNumber(std::string number, const KeptEnds& kept, const std::string& label, const KeyedHash& hash) {
  const std::vector<Place> all = PlacesOf(number, kept);
  const Places places(all);
  Places changed = places.first(places.size() / 2);
  Places other = places.last(places.size() - changed.size());
  const std::string shape = ShapeOf(number, places);
  for (int round = 0; round < kRounds; ++round) {
    std::string message;
    for (const std::string& part : {label, shape, std::to_string(round), CharactersAt(number, other)}) {
      message.append(part).push_back('\0');
    }
    AddTo(number, changed, Stream(std::move(message), hash));
    std::swap(changed, other);
  }
  return number;
}

}  // namespace norv::simulator
