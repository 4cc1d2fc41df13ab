// Takes out of a block what tells whose battery it is of.
//
// A serial or CT number becomes another one of the same shape. The other texts and all numbers that are decoded stay.
// Whatever else firmware leaves in a block is cleared, because it may be anything.
#pragma once

#include <string>

#include "calls/Outcome.h"
#include "norv/simulator/MachineRecorder.h"

namespace norv::simulator {

void RedactBattery(Block& block, const KeyedHash& hash);
void RedactCellSwell(Block& block);

// Becomes another one that ends in the same date, or in none.
std::string MaskedSerialNumber(const std::string& number, const KeyedHash& hash);

// The length of the date at the end of a serial number, 0 where there is none: year, month and day, or month, day and
// year, joined by '-', '/', '.' or a blank, the year written 20 and two digits or as a bare 19.
std::size_t TrailingDateLength(const std::string& serialNumber);

}  // namespace norv::simulator
