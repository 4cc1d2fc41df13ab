// Reads the slots of a machine file into what the BIOS answers for them.
#pragma once

#include "machine/JsonNode.h"
#include "machine/MachineDescription.h"

namespace norv::simulator {

SlotContents ReadSlot(const JsonNode& slot);

// A block: by its fields ("battery", "cellSwell"), or as the hex digits of all its bytes.
Block ReadBattery(const JsonNode& node);
Block ReadCellSwell(const JsonNode& node);
Block ReadBlockHex(const JsonNode& node);

}  // namespace norv::simulator
