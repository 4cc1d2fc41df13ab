// Reads the faults of a machine file.
#pragma once

#include "machine/JsonNode.h"
#include "norv/simulator/FaultInjector.h"

namespace norv::simulator {

Fault ReadFault(const JsonNode& node);

}  // namespace norv::simulator
