// Any text as a listing of the power supply class: it is refused with its line, or its batteries can be read.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/Check.h"
#include "posix/PowerSupply.h"
#include "posix/SupplyListing.h"

namespace {

using norv::platform::posix::kLongestAttribute;
using norv::platform::posix::kMostSupplies;
using norv::platform::posix::SupplyListing;
using norv::test::Require;

void CheckRefused(const SupplyListing& listing) {
  Require(listing.Defect()->starts_with("line ") && listing.Defect()->find(": expected ") != std::string::npos,
          "the refusal says where and what was expected");
  Require(listing.Names().empty(), "a listing that is refused has no supplies");
}

void CheckTaken(const SupplyListing& listing) {
  Require(listing.Names().size() <= kMostSupplies, "the number of supplies");
  for (const std::string& name : listing.Names()) {
    Require(!name.empty() && name.find('/') == std::string::npos, "the name of a supply");
    Require(listing.Open(name)("type").value_or("").size() <= kLongestAttribute, "the length of a value");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const SupplyListing listing(std::string(reinterpret_cast<const char*>(data), size));
  listing.Defect() ? CheckRefused(listing) : CheckTaken(listing);
  const bool isFirst = ReadBattery(listing, 0).has_value();
  Require(isFirst || !ReadBattery(listing, 1).has_value(), "no second battery without a first one");
  return 0;
}
