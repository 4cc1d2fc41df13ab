// Reads the slots of a machine file into what the BIOS answers for them.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "fields/Stored.h"
#include "machine/JsonNode.h"
#include "machine/MachineDescription.h"

namespace norv::simulator {

SlotContents ReadSlot(const JsonNode& slot);

// A block: by its fields ("battery", "cellSwell"), or as the hex digits of all its bytes.
Block ReadBattery(const JsonNode& node);
Block ReadCellSwell(const JsonNode& node);
Block ReadBlockHex(const JsonNode& node);

using StoredRows = std::span<const shared::battery::fields::Row* const>;

// The member of a block's object that is the field, or the list that it is an item of.
std::string BlockKey(const shared::battery::fields::Row& row);

// Calls take(key, rows) for each member that the block with the fields `rows` may have: with the row of a field, or
// those of a list's items.
template <typename Take>
void ForEachMember(StoredRows rows, Take take) {
  while (!rows.empty()) {
    std::size_t count = 1;
    while (count < rows.size() && shared::battery::fields::ItemIndex(*rows[count]) == count) {
      ++count;
    }
    take(BlockKey(*rows.front()), rows.first(count));
    rows = rows.subspan(count);
  }
}

}  // namespace norv::simulator
