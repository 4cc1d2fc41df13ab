// Reads the slots of a machine file into what the BIOS answers for them.
#pragma once

#include "JsonNode.h"
#include "MachineDescription.h"

namespace norv::simulator {

SlotDescription ReadSlot(const JsonNode& slot);

}  // namespace norv::simulator
