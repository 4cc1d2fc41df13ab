// Each allocation of each function of the C interface fails in turn: the status says so, or nothing is missing. The
// leak sanitizer sees to it that nothing is left behind.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "Reader.h"
#include "memory/FailingNew.h"
#include "norv/simulator/SimulatedMachine.h"
#include "unit/support/TestBlock.h"

namespace norv::test::c {
namespace {

int32_t TwoBatteries(void* /*context*/, uint32_t /*first*/, uint32_t /*second*/, uint32_t /*third*/,
                     const uint8_t* /*input*/, uint32_t /*inputSize*/, uint8_t* output, uint32_t* returnCode) {
  // Of a serial number without a date, so that age has an error to make texts for.
  static const TestBlock block = HealthyBlock().SerialNumber("0123456789ABCDEF").CtNumber("short");
  std::memcpy(output, block.Data(), block.Bytes().size());
  *returnCode = 0;
  return 0;
}

int32_t NoBatteries(void* /*context*/, uint32_t /*first*/, uint32_t /*second*/, uint32_t /*third*/,
                    const uint8_t* /*input*/, uint32_t /*inputSize*/, uint8_t* /*output*/, uint32_t* returnCode) {
  *returnCode = 6;
  return 0;
}

norv_battery_options Options(norv_battery_channel channel, std::uint32_t flags) {
  auto options = Sized<norv_battery_options>();
  options.channel = channel;
  options.flags = flags;
  return options;
}

int32_t Append(void* context, const norv_battery_description* description, const norv_battery_value* value,
               const char* text) {
  auto& all = *static_cast<std::string*>(context);
  all.append(description->name).append("=").append(text).append(std::to_string(value->state)).append("\n");
  return 0;
}

int32_t Ignore(void* /*context*/, const norv_battery_description* /*description*/, const norv_battery_value* /*value*/,
               const char* /*text*/) {
  return 0;
}

std::string Everything(const norv_battery_record* record) {
  std::string all;
  if (record != nullptr) {
    Demand(norv_battery_for_each_field(record, Append, &all));
  }
  return all;
}

std::string Everything(norv_battery_collection* collection) {
  std::string all = CollectionFailure(collection).message + TestFailure(collection).message;
  for (std::uint32_t slot = 0; slot < NORV_BATTERY_SLOT_COUNT; ++slot) {
    norv_battery_record* record = nullptr;
    norv_battery_get_record(collection, slot, &record);
    all += Everything(record);
  }
  return all;
}

// Calls with the first, second, ... allocation failing until there are fewer, and hands each status to `check`, when
// nothing fails any more. `expected` is the status when nothing failed.
template <typename Call, typename Check>
void FailEach(norv_battery_status expected, Call call, Check check) {
  std::size_t starved = 0;
  bool failed = true;
  for (std::size_t count = 0; failed; ++count) {
    SCOPED_TRACE("allocation " + std::to_string(count));
    FailAllocation(count);
    const norv_battery_status status = call();
    failed = StopFailing();
    EXPECT_TRUE(status == expected || (failed && status == NORV_BATTERY_OUT_OF_MEMORY)) << "status " << status;
    starved += status == NORV_BATTERY_OUT_OF_MEMORY ? 1 : 0;
    check(status);
  }
  EXPECT_GT(starved, 0U) << "no failed allocation was noticed";
}

template <typename Call>
void FailEach(norv_battery_status expected, Call call) {
  FailEach(expected, call, [](norv_battery_status /*status*/) {});
}

// A collection is whole or there is none.
void FailOpening(const norv_battery_options& options) {
  const std::string whole = Everything(Collection(&options).Get());
  norv_battery_collection* collection = nullptr;
  FailEach(
      NORV_BATTERY_OK, [&] { return norv_battery_open(&options, &collection); },
      [&](norv_battery_status status) {
        EXPECT_EQ(collection != nullptr, status == NORV_BATTERY_OK);
        if (collection != nullptr) {
          EXPECT_EQ(Everything(collection), whole);
        }
        norv_battery_close(collection);
      });
}

TEST(CInterfaceAllocation, Opening) {
  FailOpening(Options(TwoBatteries, NORV_BATTERY_READ_CELL_SWELL));
  FailOpening(Options(TwoBatteries, NORV_BATTERY_READ_CELL_SWELL | NORV_BATTERY_RUN_TEST));
  FailOpening(Options(NoBatteries, 0));
}

// What their reader absorbs for want of memory would be told as "Not supported".
TEST(CInterfaceAllocation, OpeningAMachineWithSettings) {
  const auto machine = simulator::SimulatedMachine::FromText(R"({"description": "settings", "slots": [], "wmi": {
      "\\\\.\\root\\cimv2": {"Win32_BaseBoard": [{"Product": "9XQ4"}], "Win32_BIOS": [{"Name": "F.17"}]},
      "\\\\.\\root\\Norv\\InstrumentedBios": {"Norv_BIOSSetting": [
        {"Name": "Battery Care Function", "Value": "a text that fills no short buffer"}]}}})",
                                                             "here");
  FailOpening(Options(TwoBatteries, 0));
}

// The first slot's read fails, and the battery test after it: its error is what the collection keeps.
TEST(CInterfaceAllocation, IsNotHiddenByALaterFailure) {
  const norv_battery_options options = Options(NoBatteries, NORV_BATTERY_RUN_TEST);
  bool failed = true;
  for (std::size_t count = 0; failed; ++count) {
    norv_battery_collection* collection = nullptr;
    FailAllocation(count);
    const norv_battery_status status = norv_battery_open(&options, &collection);
    failed = StopFailing();
    EXPECT_EQ(status, failed ? NORV_BATTERY_OUT_OF_MEMORY : NORV_BATTERY_OK) << "allocation " << count;
    norv_battery_close(collection);
  }
}

TEST(CInterfaceAllocation, OfOneRunIsNoneOfTheNext) {
  const auto machine = simulator::SimulatedMachine::FromText(
      R"({"description": "a program without a report", "testProgram": {"version": "1.2.3.4", "report": null}})",
      "here");
  const norv_battery_options options = Options(TwoBatteries, 0);
  const Collection collection(&options);
  FailAllocation(0);
  EXPECT_EQ(norv_battery_run_test(collection.Get()), NORV_BATTERY_OUT_OF_MEMORY);
  EXPECT_TRUE(StopFailing());
  EXPECT_EQ(norv_battery_run_test(collection.Get()), NORV_BATTERY_NO_VERDICT);
}

TEST(CInterfaceAllocation, RunningTheTest) {
  const norv_battery_options options = Options(TwoBatteries, 0);
  const Collection collection(&options);
  FailEach(NORV_BATTERY_NO_VERDICT, [&] { return norv_battery_run_test(collection.Get()); });
}

TEST(CInterfaceAllocation, Decoding) {
  const TestBlock block = HealthyBlock();
  norv_battery_record* record = nullptr;
  FailEach(
      NORV_BATTERY_OK, [&] { return norv_battery_decode(block.Data(), 128, block.Data(), 128, &record); },
      [&](norv_battery_status status) {
        EXPECT_EQ(record != nullptr, status == NORV_BATTERY_OK);
        norv_battery_release(record);
      });
}

TEST(CInterfaceAllocation, ReadingFields) {
  const norv_battery_options options = Options(TwoBatteries, NORV_BATTERY_READ_CELL_SWELL);
  const Collection collection(&options);
  const norv_battery_record* const record = collection.Record(0);
  const std::string before = Everything(record);
  char text[64];
  auto value = Sized<norv_battery_value>();
  for (const std::int32_t field :
       {NORV_BATTERY_MANUFACTURING_DATE, NORV_BATTERY_SERIAL_NUMBER, NORV_BATTERY_VALID, NORV_BATTERY_AGE}) {
    FailEach(NORV_BATTERY_OK, [&] { return norv_battery_read_field(record, field, &value, text, sizeof text); });
  }
  FailEach(NORV_BATTERY_OK, [&] { return norv_battery_for_each_field(record, Ignore, nullptr); });
  EXPECT_EQ(Everything(record), before);
}

TEST(CInterfaceAllocation, ReadingErrors) {
  const norv_battery_options options = Options(NoBatteries, NORV_BATTERY_RUN_TEST);
  const Collection collection(&options);
  const TestBlock block = HealthyBlock().SerialNumber("0123456789ABCDEF");
  const Decoded record(block.Data());
  char text[256];
  auto error = Sized<norv_battery_error>();
  FailEach(NORV_BATTERY_OK, [&] {
    return norv_battery_collection_error_text(collection.Get(), NORV_BATTERY_ERROR_MESSAGE, text, sizeof text, nullptr);
  });
  FailEach(NORV_BATTERY_OK, [&] {
    return norv_battery_test_error_text(collection.Get(), NORV_BATTERY_ERROR_FUNCTION, text, sizeof text, nullptr);
  });
  FailEach(NORV_BATTERY_OK, [&] { return norv_battery_field_error(record.Get(), NORV_BATTERY_AGE, &error); });
  FailEach(NORV_BATTERY_OK, [&] {
    return norv_battery_field_error_text(record.Get(), NORV_BATTERY_AGE, NORV_BATTERY_ERROR_MESSAGE, text, sizeof text,
                                         nullptr);
  });
}

}  // namespace
}  // namespace norv::test::c
