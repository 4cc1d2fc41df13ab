// The words that a machine file has for what the source of a slot tells besides its answers.
#pragma once

#include "json/Value.h"
#include "machine/JsonNode.h"
#include "norv/platform/Platform.h"

namespace norv::simulator {

// "driver" of a slot: all of the description but its source and the state of charge, which stand elsewhere.
platform::SlotDescription ReadDriver(const JsonNode& node);

// The reverse; what the description does not tell is left out.
json::Object DriverJson(const platform::SlotDescription& description);

// An answer holds the whole description.
platform::SlotDescription ReadSlotDescription(const JsonNode& node);
json::Object SlotDescriptionJson(const platform::SlotDescription& description);

}  // namespace norv::simulator
