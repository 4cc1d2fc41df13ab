#include "report/Verdict.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace norv::tool {

namespace {

constexpr int kFailDigit = 0x4;
constexpr const char* kUnknownQualifier = "a qualifier that is not defined";

// The low hexadecimal digit of a code is the index into its class's qualifiers.
constexpr std::array kConditions = {
    "",
    "no AC adapter was connected",
    "several batteries are installed",
    "temperature",
    "deep discharge",
    "low ambient temperature",
};

constexpr std::array kFailureCauses = {
    "bad cell",
    "temperature alarm",
    "blown fuse",
    "over charge alarm",
    "bad design voltage",
    "the battery does not charge",
    "voltage out of specification",
    "corrupt capacity figures",
    "trickle overcharge",
    "disabled because of low voltage",
};

constexpr std::array kUnknownCauses = {
    "invalid battery data", "no communication with the battery",
    "the battery was busy", "error in the test program",
    "the check failed",     "BIOS charge error",
};

struct VerdictClass {
  int digit;  // the high hexadecimal digit of its codes
  const char* name;
  const char* meaning;
  std::span<const char* const> qualifiers;
};

constexpr std::span<const char* const> kSharedConditions(kConditions.data(), 5);

constexpr std::array<VerdictClass, 7> kClasses = {{
    {0x0, "OK", "the battery is in order", kConditions},
    {0x2, "CALIBRATE", "the battery should be calibrated", kSharedConditions},
    {0x3, "WEAK", "the battery is weak", kSharedConditions},
    {kFailDigit, "FAIL", "the battery has failed the test", kFailureCauses},
    {0x6, "NO_BATTERY", "the test found no battery", std::span(kConditions.data(), 1)},
    {0x7, "VERY_WEAK", "the battery is very weak", kSharedConditions},
    {0x9, "UNKNOWN", "the test came to no conclusion", kUnknownCauses},
}};

}  // namespace

std::optional<Verdict> ExplainResult(std::optional<int> code) {
  if (!code || *code < 0) {
    return std::nullopt;
  }
  const int digit = *code / 16;
  const auto* const found = std::find_if(kClasses.begin(), kClasses.end(), [digit](const VerdictClass& verdictClass) {
    return verdictClass.digit == digit;
  });
  if (found == kClasses.end()) {
    return std::nullopt;
  }
  const auto qualifier = static_cast<std::size_t>(*code % 16);
  return Verdict{found->name, found->meaning,
                 qualifier < found->qualifiers.size() ? found->qualifiers[qualifier] : kUnknownQualifier};
}

bool IsFailure(std::optional<int> code) {
  return code && *code >= 0 && *code / 16 == kFailDigit;
}

}  // namespace norv::tool
