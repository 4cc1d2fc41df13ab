// Reads the WMI namespaces of a machine file.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "machine/JsonNode.h"
#include "machine/MachineDescription.h"

namespace norv::simulator {

std::map<std::string, NamespaceDescription> ReadWmi(const JsonNode& wmi);

// An array of objects.
std::vector<Row> ReadRows(const JsonNode& node);

}  // namespace norv::simulator
