// Reads the WMI namespaces of a machine file.
#pragma once

#include <map>
#include <string>

#include "JsonNode.h"
#include "MachineDescription.h"

namespace norv::simulator {

std::map<std::string, NamespaceDescription> ReadWmi(const JsonNode& wmi);

}  // namespace norv::simulator
