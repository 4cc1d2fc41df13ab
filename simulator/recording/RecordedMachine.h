// Writes what a recorder kept as a machine file.
#pragma once

#include <string>
#include <vector>

#include "norv/simulator/MachineRecorder.h"
#include "recording/Recording.h"

namespace norv::simulator {

std::string RecordedMachineText(const std::vector<RecordedCall>& calls, const Origin& origin);

}  // namespace norv::simulator
