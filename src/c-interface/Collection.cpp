// Opening, asking and closing collections.
#include <memory>
#include <optional>
#include <utility>

#include "Listening.h"
#include "c-interface/ErrorParts.h"
#include "c-interface/Guard.h"
#include "c-interface/Handles.h"
#include "c-interface/Interface.h"
#include "diagnostics/MemoryWatch.h"
#include "fields/Read.h"
#include "norv/platform/Platform.h"

using norv::platform::Listening;
using norv::shared::battery::NorvBatteryInfo;
using norv::shared::battery::NorvBatteryTestInfo;
using norv::shared::battery::c_interface::CheckStructure;
using norv::shared::battery::c_interface::CopyErrorText;
using norv::shared::battery::c_interface::Guarded;
using norv::shared::battery::c_interface::HostChannel;
using norv::shared::battery::c_interface::HostLog;
using norv::shared::battery::c_interface::Release;
using norv::shared::battery::c_interface::Using;
using norv::shared::battery::c_interface::WriteError;
using norv::shared::battery::diagnostics::LogListener;
using norv::shared::battery::diagnostics::MemoryWatch;

namespace {

constexpr std::uint32_t kKnownFlags = NORV_BATTERY_READ_CELL_SWELL | NORV_BATTERY_RUN_TEST;

bool IsSet(const norv_battery_options& options, std::uint32_t flag) {
  return (options.flags & flag) != 0;
}

norv_battery_status CheckOptions(const norv_battery_options& options) {
  if (const norv_battery_status status = CheckStructure(&options); status != NORV_BATTERY_OK) {
    return status;
  }
  const bool areKnown = (options.flags & ~kKnownFlags) == 0 && options.logLevel >= NORV_BATTERY_LOG_NONE &&
                        options.logLevel <= NORV_BATTERY_LOG_VERBOSE;
  return areKnown ? NORV_BATTERY_OK : NORV_BATTERY_INVALID_ARGUMENT;
}

// What the machine's own source told of the block in a slot; nothing where it told all, or where another channel
// answered.
std::optional<norv::shared::battery::fields::Told> ToldOf(std::uint32_t slot, const norv::firmware::Block& block) {
  const auto told = norv::platform::Platform::Current().DescribeSlot(slot).told;
  return !told.all() && norv::shared::battery::fields::IsOf(block.data(), told) ? std::optional(told) : std::nullopt;
}

// The handle of the record of each slot that has one.
void AdoptRecords(norv_battery_collection& collection) {
  for (unsigned char slot = 0; slot < NORV_BATTERY_SLOT_COUNT; ++slot) {
    if (NorvBatteryInfo* const info = collection.batteries.Query(slot)) {
      norv_battery_record& record = collection.records.at(slot).emplace(&collection.use);
      record.info = info;
      record.block = collection.channel->Information().at(slot).value();
      record.cellSwell = collection.channel->CellSwell().at(slot);
      record.told = ToldOf(slot, record.block);
    }
  }
}

norv_battery_status Open(const norv_battery_options& options, norv_battery_collection** collection) {
  auto channel = std::make_unique<HostChannel>(options.channel, options.channelContext);
  auto test = std::make_unique<NorvBatteryTestInfo>();
  HostLog log(options);
  const Listening<LogListener> listening(&log);
  const MemoryWatch memory;
  auto opened = std::make_unique<norv_battery_collection>(options, std::move(channel), std::move(test));
  // The batteries go on where an allocation failed. A C host gets its status and no half a collection.
  if (memory.RanOut()) {
    return NORV_BATTERY_OUT_OF_MEMORY;
  }
  AdoptRecords(*opened);
  *collection = opened.release();
  return NORV_BATTERY_OK;
}

}  // namespace

// Channel and test become the batteries', whose constructor throws nothing.
norv_battery_collection::norv_battery_collection(const norv_battery_options& options,
                                                 std::unique_ptr<Channel> hostChannel,
                                                 std::unique_ptr<TestInfo> testInfo)
    : log(options),
      channel(hostChannel.get()),
      test(testInfo.get()),
      batteries(IsSet(options, NORV_BATTERY_READ_CELL_SWELL), IsSet(options, NORV_BATTERY_RUN_TEST),
                static_cast<norv::shared::norvbios::PrivateBiosWmi*>(hostChannel.release()), testInfo.release()) {
}

norv_battery_status norv_battery_open(const norv_battery_options* options, norv_battery_collection** collection) {
  return Guarded([=] {
    if (collection == nullptr) {
      return static_cast<norv_battery_status>(NORV_BATTERY_INVALID_ARGUMENT);
    }
    *collection = nullptr;
    norv_battery_options standard{};
    standard.size = sizeof standard;
    const norv_battery_options& chosen = options != nullptr ? *options : standard;
    const norv_battery_status status = CheckOptions(chosen);
    return status == NORV_BATTERY_OK ? Open(chosen, collection) : status;
  });
}

norv_battery_status norv_battery_close(norv_battery_collection* collection) {
  return Release(collection);
}

norv_battery_status norv_battery_get_record(norv_battery_collection* collection, uint32_t slot,
                                            norv_battery_record** record) {
  if (record == nullptr) {
    return NORV_BATTERY_INVALID_ARGUMENT;
  }
  *record = nullptr;
  return Using(collection, [=] {
    if (slot >= NORV_BATTERY_SLOT_COUNT) {
      return NORV_BATTERY_INVALID_SLOT;
    }
    auto& found = collection->records.at(slot);
    if (!found) {
      return NORV_BATTERY_NO_BATTERY;
    }
    *record = &*found;
    return NORV_BATTERY_OK;
  });
}

norv_battery_status norv_battery_run_test(norv_battery_collection* collection) {
  return Using(collection, [collection] {
    const Listening<LogListener> listening(&collection->log);
    const MemoryWatch memory;
    collection->test->RunBatteryTest();
    const bool hasVerdict = collection->batteries.RunBatteryTest();
    if (memory.RanOut()) {
      return NORV_BATTERY_OUT_OF_MEMORY;
    }
    return hasVerdict ? NORV_BATTERY_OK : NORV_BATTERY_NO_VERDICT;
  });
}

norv_battery_status norv_battery_collection_error(const norv_battery_collection* collection,
                                                  norv_battery_error* error) {
  return Using(collection, [=] { return WriteError(collection->batteries.GetError(), error); });
}

norv_battery_status norv_battery_collection_error_text(const norv_battery_collection* collection, int32_t part,
                                                       char* buffer, size_t bufferSize, size_t* needed) {
  return Using(collection,
               [=] { return CopyErrorText(collection->batteries.GetError(), part, buffer, bufferSize, needed); });
}

norv_battery_status norv_battery_test_error(const norv_battery_collection* collection, norv_battery_error* error) {
  return Using(collection, [=] { return WriteError(collection->test->GetError(), error); });
}

norv_battery_status norv_battery_test_error_text(const norv_battery_collection* collection, int32_t part, char* buffer,
                                                 size_t bufferSize, size_t* needed) {
  return Using(collection,
               [=] { return CopyErrorText(collection->test->GetError(), part, buffer, bufferSize, needed); });
}
