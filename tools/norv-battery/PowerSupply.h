// The batteries of another notebook, on systems whose kernel shows batteries as files.
#pragma once

#include <memory>
#include <string>

namespace norv::tool {

bool HasPowerSupplies();

// Why `path` is neither a folder of the power supply class nor a listing of one; empty where it is.
std::string PowerSupplyDefect(const std::string& path);

// For as long as the result lives, the library meets the batteries of the folder or listing `path` in the place of the
// running machine's. Only where there are such.
std::shared_ptr<void> PlacePowerSupply(const std::string& path);

}  // namespace norv::tool
