// What the manufacturer text says: pack maker, cell maker, warranty class, rated cycle life, calibration type and
// over-current limit, a character each.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace norv::shared::battery::record {

// Each takes the whole manufacturer text. The texts are constants.
const char* PackSupplier(std::string_view manufacturer);
const char* CellSupplier(std::string_view manufacturer);
const char* WarrantyType(std::string_view manufacturer);
const char* DesignCycleCount(std::string_view manufacturer);

// One character of the text; none where the text has no shape, or one without a calibration type.
std::string_view CalibrationType(std::string_view manufacturer);

// In the unit of `designCapacity`; nothing for a code without a meaning.
std::optional<int> FindOverCurrentProtection(std::string_view manufacturer, int designCapacity);

// The same; 0 for a code without a meaning.
int OverCurrentProtection(std::string_view manufacturer, int designCapacity);

}  // namespace norv::shared::battery::record
