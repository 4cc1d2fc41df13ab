// Takes out of a recording what tells whose machine it is.
#pragma once

#include <vector>

#include "Recording.h"
#include "norv/simulator/MachineRecorder.h"

namespace norv::simulator {

std::vector<RecordedCall> Redacted(std::vector<RecordedCall> calls, const KeyedHash& hash);
Origin Redacted(Origin origin, const KeyedHash& hash);

// The length of the date at the end of a serial number, 0 where there is none: year, month and day, or month, day and
// year, joined by '-', '/', '.' or a blank, the year written 20 and two digits or as a bare 19.
std::size_t TrailingDateLength(const std::string& serialNumber);

}  // namespace norv::simulator
