// Records, and what is read from them.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>

#include "c-interface/ErrorParts.h"
#include "c-interface/Fields.h"
#include "c-interface/Guard.h"
#include "c-interface/Handles.h"
#include "c-interface/Interface.h"
#include "c-interface/Texts.h"
#include "fields/Catalogue.h"
#include "record/RecordMaker.h"

using norv::firmware::kBlockSize;
using norv::shared::battery::c_interface::CheckStructure;
using norv::shared::battery::c_interface::CopyErrorText;
using norv::shared::battery::c_interface::CopyText;
using norv::shared::battery::c_interface::FieldFailure;
using norv::shared::battery::c_interface::FindField;
using norv::shared::battery::c_interface::Guarded;
using norv::shared::battery::c_interface::ReadField;
using norv::shared::battery::c_interface::Reading;
using norv::shared::battery::c_interface::Release;
using norv::shared::battery::c_interface::Using;
using norv::shared::battery::c_interface::WriteError;
using norv::shared::battery::fields::kCatalogue;
using norv::shared::battery::fields::Row;
using norv::shared::battery::record::RecordMaker;

static_assert(NORV_BATTERY_BLOCK_SIZE == kBlockSize);

namespace {

void WriteValue(const Row& row, const Reading& reading, norv_battery_value& value) {
  value.field = row.number;
  value.kind = row.kind;
  value.state = reading.state;
  value.number = reading.number;
  value.real = reading.real;
  value.textSize = reading.text.size() + 1;
}

norv_battery_status WriteReading(const Row& row, const Reading& reading, norv_battery_value& value, char* text,
                                 std::size_t textBufferSize) {
  WriteValue(row, reading, value);
  return CopyText(reading.text, text, textBufferSize, nullptr);
}

template <std::size_t Size>
void Put(std::string_view text, char (&member)[Size]) {
  std::fill_n(member, Size, '\0');
  text.copy(member, Size - 1);
}

// A host of an earlier version has no room for what came later.
constexpr std::uint32_t kDescriptionWithoutKey = offsetof(norv_battery_description, key);

void WriteDescription(const Row& row, norv_battery_description& description) {
  description.field = row.number;
  description.kind = row.kind;
  description.source = row.source;
  description.offset = static_cast<std::uint32_t>(row.place.offset);
  description.width = static_cast<std::uint32_t>(row.place.width);
  description.bit = row.bit;
  Put(row.name, description.name);
  Put(row.unit, description.unit);
  if (description.size > kDescriptionWithoutKey) {
    Put(row.key, description.key);
    Put(row.group->key, description.group);
    Put(row.label, description.label);
  }
}

// Runs operation(row), which uses `handle`, with the row of a field that there is.
template <typename Handle, typename Operation>
norv_battery_status UsingField(Handle* handle, std::int32_t field, Operation operation) {
  return Using(handle, [=] {
    const Row* const row = FindField(field);
    return row != nullptr ? operation(*row) : static_cast<norv_battery_status>(NORV_BATTERY_UNKNOWN_FIELD);
  });
}

// The bytes that a field is read from; none where it is not one place of a block that is there.
std::span<const std::uint8_t> Bytes(const norv_battery_record& record, const Row& row) {
  if (row.source == NORV_BATTERY_FROM_CELL_SWELL_BLOCK) {
    return record.cellSwell ? std::span(*record.cellSwell).subspan(row.place.offset, row.place.width)
                            : std::span<const std::uint8_t>();
  }
  return std::span(record.block).subspan(row.place.offset, row.place.width);
}

norv_battery_status CopyBytes(std::span<const std::uint8_t> bytes, std::uint8_t* buffer, std::size_t bufferSize,
                              std::size_t* needed) {
  if (buffer == nullptr && bufferSize != 0) {
    return NORV_BATTERY_INVALID_ARGUMENT;
  }
  if (bytes.empty()) {
    return NORV_BATTERY_NO_BYTES;
  }
  if (needed != nullptr) {
    *needed = bytes.size();
  }
  if (buffer == nullptr) {
    return NORV_BATTERY_OK;
  }
  if (bufferSize < bytes.size()) {
    return NORV_BATTERY_BUFFER_TOO_SMALL;
  }
  std::copy(bytes.begin(), bytes.end(), buffer);
  return NORV_BATTERY_OK;
}

norv_battery_status CheckBlocks(const std::uint8_t* block, std::size_t blockSize, const std::uint8_t* cellSwell,
                                std::size_t cellSwellSize) {
  if (block == nullptr || (cellSwell == nullptr && cellSwellSize != 0)) {
    return NORV_BATTERY_INVALID_ARGUMENT;
  }
  const bool areWhole = blockSize == kBlockSize && (cellSwell == nullptr || cellSwellSize == kBlockSize);
  return areWhole ? NORV_BATTERY_OK : NORV_BATTERY_INVALID_SIZE;
}

std::unique_ptr<norv_battery_record> Decode(const std::uint8_t* block, const std::uint8_t* cellSwell) {
  auto record = std::make_unique<norv_battery_record>();
  record->owned = RecordMaker::Make(block, {});
  record->info = record->owned.get();
  std::copy_n(block, kBlockSize, record->block.begin());
  if (cellSwell != nullptr) {
    std::copy_n(cellSwell, kBlockSize, record->cellSwell.emplace().begin());
    record->info->SetCellSwellProtectionInfo(cellSwell);
  }
  return record;
}

norv_battery_status Visit(const norv_battery_record& record, const Row& row, norv_battery_visitor visitor,
                          void* context) {
  const Reading reading = ReadField(record, row);
  norv_battery_description description{};
  description.size = sizeof description;
  WriteDescription(row, description);
  norv_battery_value value{};
  value.size = sizeof value;
  WriteValue(row, reading, value);
  return visitor(context, &description, &value, reading.text.c_str()) == 0 ? NORV_BATTERY_OK : NORV_BATTERY_STOPPED;
}

}  // namespace

norv_battery_status norv_battery_decode(const uint8_t* block, size_t blockSize, const uint8_t* cellSwell,
                                        size_t cellSwellSize, norv_battery_record** record) {
  return Guarded([=] {
    if (record == nullptr) {
      return static_cast<norv_battery_status>(NORV_BATTERY_INVALID_ARGUMENT);
    }
    *record = nullptr;
    const norv_battery_status status = CheckBlocks(block, blockSize, cellSwell, cellSwellSize);
    if (status == NORV_BATTERY_OK) {
      *record = Decode(block, cellSwell).release();
    }
    return status;
  });
}

norv_battery_status norv_battery_release(norv_battery_record* record) {
  return record == nullptr || record->IsDecoded() ? Release(record) : NORV_BATTERY_BORROWED;
}

int32_t norv_battery_field_count(void) {
  return static_cast<std::int32_t>(kCatalogue.size());
}

norv_battery_status norv_battery_describe_field(int32_t field, norv_battery_description* description) {
  const Row* const row = FindField(field);
  if (row == nullptr) {
    return NORV_BATTERY_UNKNOWN_FIELD;
  }
  if (description != nullptr && description->size == kDescriptionWithoutKey) {
    WriteDescription(*row, *description);
    return NORV_BATTERY_OK;
  }
  const norv_battery_status status = CheckStructure(description);
  if (status == NORV_BATTERY_OK) {
    WriteDescription(*row, *description);
  }
  return status;
}

norv_battery_status norv_battery_read_field(const norv_battery_record* record, int32_t field, norv_battery_value* value,
                                            char* text, size_t textBufferSize) {
  return UsingField(record, field, [=](const Row& row) {
    const norv_battery_status status = CheckStructure(value);
    return status == NORV_BATTERY_OK ? WriteReading(row, ReadField(*record, row), *value, text, textBufferSize)
                                     : status;
  });
}

norv_battery_status norv_battery_read_test(const norv_battery_collection* collection, int32_t field,
                                           norv_battery_value* value, char* text, size_t textBufferSize) {
  return UsingField(collection, field, [=](const Row& row) {
    const norv_battery_status status = CheckStructure(value);
    if (status != NORV_BATTERY_OK) {
      return status;
    }
    if (row.source != NORV_BATTERY_FROM_BATTERY_TEST) {
      return static_cast<norv_battery_status>(NORV_BATTERY_UNKNOWN_FIELD);
    }
    return WriteReading(row, ReadField(*collection->test, row), *value, text, textBufferSize);
  });
}

norv_battery_status norv_battery_read_bytes(const norv_battery_record* record, int32_t field, uint8_t* buffer,
                                            size_t bufferSize, size_t* needed) {
  return UsingField(record, field,
                    [=](const Row& row) { return CopyBytes(Bytes(*record, row), buffer, bufferSize, needed); });
}

norv_battery_status norv_battery_field_error(const norv_battery_record* record, int32_t field,
                                             norv_battery_error* error) {
  return UsingField(record, field,
                    [=](const Row& row) { return WriteError(FieldFailure(*record, row.number), error); });
}

norv_battery_status norv_battery_field_error_text(const norv_battery_record* record, int32_t field, int32_t part,
                                                  char* buffer, size_t bufferSize, size_t* needed) {
  return UsingField(record, field, [=](const Row& row) {
    return CopyErrorText(FieldFailure(*record, row.number), part, buffer, bufferSize, needed);
  });
}

norv_battery_status norv_battery_for_each_field(const norv_battery_record* record, norv_battery_visitor visitor,
                                                void* context) {
  return Using(record, [=] {
    norv_battery_status status = visitor != nullptr ? NORV_BATTERY_OK : NORV_BATTERY_INVALID_ARGUMENT;
    for (const Row& row : kCatalogue) {
      if (status != NORV_BATTERY_OK) {
        break;
      }
      status = Visit(*record, row, visitor, context);
    }
    return status;
  });
}
