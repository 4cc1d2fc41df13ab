#include "record/ManufacturerText.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "record/Characters.h"
#include "record/Truncation.h"

namespace norv::shared::battery::record {

namespace {

using Position = std::optional<std::size_t>;

constexpr Position kNone = std::nullopt;

// A shape of the manufacturer text: its layout ('x' is a letter or digit) and where each code stands. Cycle count and
// calibration type are one and the same character where both exist. The over-current code has two characters; in the
// second shape the second of them is the dash.
struct Shape {
  std::string_view layout;
  std::size_t warranty;
  std::size_t cycleCount;
  Position calibration;
  std::size_t packSupplier;
  std::size_t cellSupplier;
  Position overCurrent;
};

// No text has two of these shapes.
constexpr std::array<Shape, 6> kShapes{{
    // layout      warranty cycles calibration pack cell over-current
    {"xxx-xx-xx-A", 0, 2, 2, 4, 5, 7},
    {"xxx-xx-x-A", 0, 2, 2, 4, 5, 7},
    {"xx-xx-xx-A", 0, 1, kNone, 3, 4, 6},
    {"xxx-xx-A", 0, 2, 2, 4, 5, kNone},
    {"xx-xx-A", 0, 1, kNone, 3, 4, kNone},
    {"xxxxx-A", 0, 2, 2, 3, 4, kNone},
}};

struct Meaning {
  char code;
  const char* text;
};

constexpr const char* kUnknown = "UNKNOWN";

constexpr std::array<Meaning, 12> kPackSuppliers{{
    {'1', "SIMPLO"},
    {'2', "DYNAPACK"},
    {'3', "STL_TECHNOLOGY"},
    {'4', "LG_CHEMICAL"},
    {'5', "SAMSUNG_SDI"},
    {'6', kUnknown},  // not assigned
    {'7', "CELXPERT"},
    {'8', "PANASONIC_SANYO"},
    {'9', "SONY"},
    {'A', "COSMX"},
    {'B', "ATL"},
    {'C', "SUNWODA"},
}};

constexpr std::array<Meaning, 12> kCellSuppliers{{
    {'1', "E-ONE_MOLI"},
    {'2', "LG_CHEMICAL"},
    {'3', "PANASONIC"},
    {'4', "SAMSUNG_SDI"},
    {'5', "SANYO"},
    {'6', "SONY"},
    {'7', "ATL"},
    {'8', "SKC"},
    {'9', "BOSTON_POWER"},
    {'A', "BAK"},
    {'B', "LISHEN"},
    {'C', "COSLIGHT"},
}};

constexpr std::array<Meaning, 4> kWarrantyTypes{{
    {'0', "6_MONTHS"},
    {'1', "1_YEAR"},
    {'2', "2_YEARS"},
    {'3', "3_YEARS"},
}};

constexpr std::array<Meaning, 3> kDesignCycleCounts{{
    {'1', "300"},
    {'2', "600"},
    {'3', "1000"},
}};

const Shape* FindShape(std::string_view manufacturer) {
  for (const Shape& shape : kShapes) {
    if (HasLayout(manufacturer, shape.layout)) {
      return &shape;
    }
  }
  return nullptr;
}

// The code that `position` names in the text's shape. A text without a shape counts as one whose codes are all '0'.
char CodeAt(std::string_view manufacturer, std::size_t Shape::*position) {
  const Shape* shape = FindShape(manufacturer);
  return shape != nullptr ? manufacturer[shape->*position] : '0';
}

template <std::size_t Count>
const char* Find(const std::array<Meaning, Count>& table, char code) {
  for (const Meaning& meaning : table) {
    if (meaning.code == code) {
      return meaning.text;
    }
  }
  return kUnknown;
}

// The firmware takes the characters as they are, digits or not, so the code may lie outside 0 to 99.
int OverCurrentCode(std::string_view manufacturer) {
  const Shape* shape = FindShape(manufacturer);
  if (shape == nullptr || !shape->overCurrent) {
    return 0;
  }
  const auto digit = [&](std::size_t place) { return static_cast<signed char>(manufacturer[place]) - '0'; };
  return 10 * digit(*shape->overCurrent) + digit(*shape->overCurrent + 1);
}

}  // namespace

const char* PackSupplier(std::string_view manufacturer) {
  return Find(kPackSuppliers, CodeAt(manufacturer, &Shape::packSupplier));
}

const char* CellSupplier(std::string_view manufacturer) {
  return Find(kCellSuppliers, CodeAt(manufacturer, &Shape::cellSupplier));
}

const char* WarrantyType(std::string_view manufacturer) {
  return Find(kWarrantyTypes, CodeAt(manufacturer, &Shape::warranty));
}

const char* DesignCycleCount(std::string_view manufacturer) {
  return Find(kDesignCycleCounts, CodeAt(manufacturer, &Shape::cycleCount));
}

std::string_view CalibrationType(std::string_view manufacturer) {
  const Shape* shape = FindShape(manufacturer);
  return shape != nullptr && shape->calibration ? manufacturer.substr(*shape->calibration, 1) : std::string_view();
}

std::optional<int> FindOverCurrentProtection(std::string_view manufacturer, int designCapacity) {
  // Unsigned, so that a negative code lies above every range.
  const auto code = static_cast<std::uint32_t>(OverCurrentCode(manufacturer));
  if (code < 200) {
    return static_cast<int>(std::int64_t{code / 100 + 1} * designCapacity);
  }
  if (code < 220) {
    return TruncateToInt((code / 20.0 - 10.0) * designCapacity);
  }
  return std::nullopt;
}

int OverCurrentProtection(std::string_view manufacturer, int designCapacity) {
  return FindOverCurrentProtection(manufacturer, designCapacity).value_or(0);
}

}  // namespace norv::shared::battery::record
