// Every way to use the C interface wrongly has its status.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "Reader.h"
#include "unit/support/TestBlock.h"

namespace norv::test::c {
namespace {

using ::testing::Each;
using ::testing::IsEmpty;
using ::testing::Not;

int32_t NoBatteries(void* /*context*/, uint32_t /*first*/, uint32_t /*second*/, uint32_t /*third*/,
                    const uint8_t* /*input*/, uint32_t /*inputSize*/, uint8_t* /*output*/, uint32_t* returnCode) {
  *returnCode = 6;
  return 0;
}

int32_t OneBattery(void* context, uint32_t first, uint32_t second, uint32_t third, const uint8_t* input,
                   uint32_t inputSize, uint8_t* output, uint32_t* returnCode) {
  EXPECT_EQ(first, 1U);
  EXPECT_EQ(third, 1U);
  EXPECT_EQ(inputSize, 128U);
  if (input[0] != 0 || second != 7) {
    return NoBatteries(nullptr, first, second, third, input, inputSize, output, returnCode);
  }
  std::memcpy(output, context, 128);
  *returnCode = 0;
  return 0;
}

int32_t SeeNothing(void* /*context*/, const norv_battery_description* /*description*/,
                   const norv_battery_value* /*value*/, const char* /*text*/) {
  return 0;
}

class CInterfaceMisuse : public ::testing::Test {
 protected:
  CInterfaceMisuse() : options_(Sized<norv_battery_options>()) {
    options_.channel = OneBattery;
    options_.channelContext = const_cast<unsigned char*>(block_.Data());
    Demand(norv_battery_open(&options_, &collection_));
    Demand(norv_battery_get_record(collection_, 0, &record_));
  }
  ~CInterfaceMisuse() override { norv_battery_close(collection_); }

  TestBlock block_ = HealthyBlock();
  norv_battery_options options_;
  norv_battery_collection* collection_ = nullptr;
  norv_battery_record* record_ = nullptr;
};

TEST_F(CInterfaceMisuse, NullHandles) {
  auto error = Sized<norv_battery_error>();
  auto value = Sized<norv_battery_value>();
  norv_battery_record* record = record_;
  EXPECT_EQ(norv_battery_get_record(nullptr, 0, &record), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(record, nullptr);
  EXPECT_EQ(norv_battery_run_test(nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_collection_error(nullptr, &error), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_test_error(nullptr, &error), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_collection_error_text(nullptr, 0, nullptr, 0, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_test_error_text(nullptr, 0, nullptr, 0, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_read_field(nullptr, 1, &value, nullptr, 0), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_read_test(nullptr, 65, &value, nullptr, 0), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_read_bytes(nullptr, 1, nullptr, 0, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_field_error(nullptr, 39, &error), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_field_error_text(nullptr, 39, 0, nullptr, 0, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_for_each_field(nullptr, SeeNothing, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_close(nullptr), NORV_BATTERY_OK);
  EXPECT_EQ(norv_battery_release(nullptr), NORV_BATTERY_OK);
}

TEST_F(CInterfaceMisuse, NowhereToWriteTo) {
  EXPECT_EQ(norv_battery_open(&options_, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_get_record(collection_, 0, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_decode(block_.Data(), 128, nullptr, 0, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_describe_field(1, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_read_field(record_, 1, nullptr, nullptr, 0), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_read_test(collection_, 65, nullptr, nullptr, 0), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_collection_error(collection_, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_field_error(record_, 39, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_for_each_field(record_, nullptr, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  auto value = Sized<norv_battery_value>();
  EXPECT_EQ(norv_battery_read_field(record_, 1, &value, nullptr, 8), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_read_bytes(record_, 1, nullptr, 8, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_status_text(0, nullptr, 8, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
}

TEST_F(CInterfaceMisuse, SlotsThatAreNotThere) {
  norv_battery_record* record = record_;
  EXPECT_EQ(norv_battery_get_record(collection_, 2, &record), NORV_BATTERY_INVALID_SLOT);
  EXPECT_EQ(record, nullptr);
  EXPECT_EQ(norv_battery_get_record(collection_, 0xFFFFFFFF, &record), NORV_BATTERY_INVALID_SLOT);
  EXPECT_EQ(norv_battery_get_record(collection_, 1, &record), NORV_BATTERY_NO_BATTERY);
  EXPECT_EQ(record, nullptr);
}

template <typename Structure, typename Call>
void ExpectSizes(Call call) {
  auto structure = Sized<Structure>();
  EXPECT_EQ(call(&structure), NORV_BATTERY_OK);
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{4}, sizeof structure - 1, sizeof structure + 8, std::size_t{0xFFFFFFFF}}) {
    structure.size = static_cast<std::uint32_t>(size);
    EXPECT_EQ(call(&structure), NORV_BATTERY_INVALID_SIZE) << size;
  }
}

TEST_F(CInterfaceMisuse, StructuresOfAnotherSize) {
  ExpectSizes<norv_battery_options>([](const norv_battery_options* options) {
    norv_battery_options chosen = *options;
    chosen.channel = NoBatteries;
    norv_battery_collection* collection = nullptr;
    const norv_battery_status status = norv_battery_open(&chosen, &collection);
    EXPECT_EQ(collection != nullptr, status == NORV_BATTERY_OK);
    norv_battery_close(collection);
    return status;
  });
  ExpectSizes<norv_battery_error>(
      [this](norv_battery_error* e) { return norv_battery_collection_error(collection_, e); });
  ExpectSizes<norv_battery_error>([this](norv_battery_error* e) { return norv_battery_test_error(collection_, e); });
  ExpectSizes<norv_battery_error>([this](norv_battery_error* e) { return norv_battery_field_error(record_, 39, e); });
  ExpectSizes<norv_battery_description>([](norv_battery_description* d) { return norv_battery_describe_field(1, d); });
  ExpectSizes<norv_battery_value>(
      [this](norv_battery_value* v) { return norv_battery_read_field(record_, 1, v, nullptr, 0); });
  ExpectSizes<norv_battery_value>(
      [this](norv_battery_value* v) { return norv_battery_read_test(collection_, 65, v, nullptr, 0); });
}

TEST_F(CInterfaceMisuse, OptionsThatDoNotExist) {
  norv_battery_collection* collection = collection_;
  norv_battery_options options = options_;
  options.flags = 4;
  EXPECT_EQ(norv_battery_open(&options, &collection), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(collection, nullptr);
  options.flags = 0;
  for (const int level : {-1, 7}) {
    options.logLevel = level;
    EXPECT_EQ(norv_battery_open(&options, &collection), NORV_BATTERY_INVALID_ARGUMENT);
  }
}

TEST_F(CInterfaceMisuse, BlocksOfAnotherSize) {
  norv_battery_record* record = record_;
  EXPECT_EQ(norv_battery_decode(block_.Data(), 127, nullptr, 0, &record), NORV_BATTERY_INVALID_SIZE);
  EXPECT_EQ(record, nullptr);
  EXPECT_EQ(norv_battery_decode(block_.Data(), 129, nullptr, 0, &record), NORV_BATTERY_INVALID_SIZE);
  EXPECT_EQ(norv_battery_decode(nullptr, 128, nullptr, 0, &record), NORV_BATTERY_INVALID_ARGUMENT);
  EXPECT_EQ(norv_battery_decode(block_.Data(), 128, block_.Data(), 0, &record), NORV_BATTERY_INVALID_SIZE);
  EXPECT_EQ(norv_battery_decode(block_.Data(), 128, nullptr, 128, &record), NORV_BATTERY_INVALID_ARGUMENT);
}

TEST_F(CInterfaceMisuse, FieldsThatDoNotExist) {
  auto value = Sized<norv_battery_value>();
  auto description = Sized<norv_battery_description>();
  auto error = Sized<norv_battery_error>();
  for (const std::int32_t field : {0, -1, norv_battery_field_count() + 1, 0x7FFFFFFF}) {
    EXPECT_EQ(norv_battery_describe_field(field, &description), NORV_BATTERY_UNKNOWN_FIELD);
    EXPECT_EQ(norv_battery_read_field(record_, field, &value, nullptr, 0), NORV_BATTERY_UNKNOWN_FIELD);
    EXPECT_EQ(norv_battery_read_bytes(record_, field, nullptr, 0, nullptr), NORV_BATTERY_UNKNOWN_FIELD);
    EXPECT_EQ(norv_battery_field_error(record_, field, &error), NORV_BATTERY_UNKNOWN_FIELD);
    EXPECT_EQ(norv_battery_field_error_text(record_, field, 0, nullptr, 0, nullptr), NORV_BATTERY_UNKNOWN_FIELD);
    EXPECT_EQ(norv_battery_read_test(collection_, field, &value, nullptr, 0), NORV_BATTERY_UNKNOWN_FIELD);
  }
  EXPECT_EQ(norv_battery_read_test(collection_, NORV_BATTERY_VOLTAGE, &value, nullptr, 0), NORV_BATTERY_UNKNOWN_FIELD);
}

TEST_F(CInterfaceMisuse, PartsOfAnErrorThatDoNotExist) {
  for (const std::int32_t part : {-1, 3}) {
    EXPECT_EQ(norv_battery_collection_error_text(collection_, part, nullptr, 0, nullptr),
              NORV_BATTERY_INVALID_ARGUMENT);
    EXPECT_EQ(norv_battery_field_error_text(record_, 39, part, nullptr, 0, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  }
}

TEST_F(CInterfaceMisuse, ShortBuffersGetAnEmptyTextAndTheSize) {
  auto value = Sized<norv_battery_value>();
  std::array<char, 16> text{};
  const std::size_t size = sizeof "6ABCDEFGH12345";
  text.fill('x');
  EXPECT_EQ(norv_battery_read_field(record_, NORV_BATTERY_CT_NUMBER, &value, text.data(), size - 1),
            NORV_BATTERY_BUFFER_TOO_SMALL);
  EXPECT_EQ(text[0], '\0');
  EXPECT_EQ(text[1], 'x');
  EXPECT_EQ(value.textSize, size);
  EXPECT_EQ(value.state, NORV_BATTERY_VALUE);
  EXPECT_EQ(norv_battery_read_field(record_, NORV_BATTERY_CT_NUMBER, &value, text.data(), size), NORV_BATTERY_OK);
  EXPECT_STREQ(text.data(), "6ABCDEFGH12345");
  text.fill('x');
  EXPECT_EQ(norv_battery_read_field(record_, NORV_BATTERY_CT_NUMBER, &value, text.data(), 0),
            NORV_BATTERY_BUFFER_TOO_SMALL);
  EXPECT_EQ(text[0], 'x');

  std::size_t needed = 0;
  EXPECT_EQ(norv_battery_status_text(NORV_BATTERY_OK, text.data(), 7, &needed), NORV_BATTERY_BUFFER_TOO_SMALL);
  EXPECT_EQ(needed, sizeof "success");

  std::array<std::uint8_t, 16> bytes{};
  EXPECT_EQ(norv_battery_read_bytes(record_, NORV_BATTERY_CT_NUMBER, bytes.data(), 15, &needed),
            NORV_BATTERY_BUFFER_TOO_SMALL);
  EXPECT_EQ(needed, 16U);
  EXPECT_EQ(bytes[0], 0);
}

TEST_F(CInterfaceMisuse, BytesThatAreNotThere) {
  for (const std::int32_t field : {NORV_BATTERY_TIME_CHARGE, NORV_BATTERY_CHARGE_RATE, NORV_BATTERY_VALID,
                                   NORV_BATTERY_BATTERY_CARE, NORV_BATTERY_TEST_RESULT, NORV_BATTERY_WARRANTY_DATE}) {
    EXPECT_EQ(norv_battery_read_bytes(record_, field, nullptr, 0, nullptr), NORV_BATTERY_NO_BYTES);
  }
}

TEST_F(CInterfaceMisuse, ARecordOfACollectionIsNotReleased) {
  EXPECT_EQ(norv_battery_release(record_), NORV_BATTERY_BORROWED);
  EXPECT_EQ(ReadField(record_, NORV_BATTERY_CT_NUMBER).text, "6ABCDEFGH12345");
}

int32_t StopAtThird(void* context, const norv_battery_description* /*description*/, const norv_battery_value* /*value*/,
                    const char* /*text*/) {
  return ++*static_cast<int*>(context) == 3 ? 1 : 0;
}

TEST_F(CInterfaceMisuse, AVisitorEndsItsRound) {
  int seen = 0;
  EXPECT_EQ(norv_battery_for_each_field(record_, StopAtThird, &seen), NORV_BATTERY_STOPPED);
  EXPECT_EQ(seen, 3);
}

int32_t Throw(void* /*context*/, const norv_battery_description* /*description*/, const norv_battery_value* /*value*/,
              const char* /*text*/) {
  throw std::runtime_error("not allowed");
}

// Callbacks may not throw. One of the same compiler that does all the same meets a status and not the end of the host.
TEST_F(CInterfaceMisuse, WhatAVisitorThrowsGoesNoFurther) {
  EXPECT_EQ(norv_battery_for_each_field(record_, Throw, nullptr), NORV_BATTERY_INTERNAL_ERROR);
  EXPECT_EQ(ReadField(record_, NORV_BATTERY_CT_NUMBER).text, "6ABCDEFGH12345");
}

// What every function that takes a handle answers while another one uses that handle.
std::vector<norv_battery_status> UseEverything(norv_battery_collection* collection, norv_battery_record* record) {
  auto error = Sized<norv_battery_error>();
  auto value = Sized<norv_battery_value>();
  norv_battery_record* found = nullptr;
  return {norv_battery_get_record(collection, 0, &found),
          norv_battery_run_test(collection),
          norv_battery_collection_error(collection, &error),
          norv_battery_collection_error_text(collection, 0, nullptr, 0, nullptr),
          norv_battery_test_error(collection, &error),
          norv_battery_test_error_text(collection, 0, nullptr, 0, nullptr),
          norv_battery_read_test(collection, NORV_BATTERY_TEST_RESULT, &value, nullptr, 0),
          norv_battery_read_field(record, NORV_BATTERY_VOLTAGE, &value, nullptr, 0),
          norv_battery_read_bytes(record, NORV_BATTERY_VOLTAGE, nullptr, 0, nullptr),
          norv_battery_field_error(record, NORV_BATTERY_AGE, &error),
          norv_battery_field_error_text(record, NORV_BATTERY_AGE, 0, nullptr, 0, nullptr),
          norv_battery_for_each_field(record, SeeNothing, nullptr),
          norv_battery_close(collection)};
}

struct Uses {
  norv_battery_collection* collection = nullptr;
  norv_battery_record* record = nullptr;
  std::vector<norv_battery_status> statuses;

  void Add() {
    const std::vector<norv_battery_status> more = UseEverything(collection, record);
    statuses.insert(statuses.end(), more.begin(), more.end());
  }
};

void UseInLog(void* context, std::int32_t /*level*/, const char* /*function*/, const char* /*text*/) {
  auto& uses = *static_cast<Uses*>(context);
  if (uses.collection != nullptr) {
    uses.Add();
  }
}

TEST_F(CInterfaceMisuse, ALogDoesNotUseOrCloseTheCollectionThatIsTested) {
  Uses uses;
  options_.log = UseInLog;
  options_.logContext = &uses;
  options_.logLevel = NORV_BATTERY_LOG_ERROR;
  const Collection collection(&options_);
  uses.collection = collection.Get();
  uses.record = collection.Record(0);
  EXPECT_EQ(norv_battery_run_test(collection.Get()), NORV_BATTERY_NO_VERDICT);
  EXPECT_THAT(uses.statuses, Not(IsEmpty()));
  EXPECT_THAT(uses.statuses, Each(NORV_BATTERY_IN_USE));
  EXPECT_EQ(ReadField(uses.record, NORV_BATTERY_CT_NUMBER).text, "6ABCDEFGH12345");
}

int32_t UseInVisitor(void* context, const norv_battery_description* /*description*/,
                     const norv_battery_value* /*value*/, const char* /*text*/) {
  static_cast<Uses*>(context)->Add();
  return 0;
}

TEST_F(CInterfaceMisuse, AVisitorDoesNotUseOrCloseTheCollectionOfItsRecord) {
  Uses uses{collection_, record_, {}};
  EXPECT_EQ(norv_battery_for_each_field(record_, UseInVisitor, &uses), NORV_BATTERY_OK);
  EXPECT_THAT(uses.statuses, Not(IsEmpty()));
  EXPECT_THAT(uses.statuses, Each(NORV_BATTERY_IN_USE));
}

int32_t ReleaseInVisitor(void* context, const norv_battery_description* /*description*/,
                         const norv_battery_value* /*value*/, const char* /*text*/) {
  EXPECT_EQ(norv_battery_release(static_cast<norv_battery_record*>(context)), NORV_BATTERY_IN_USE);
  return 0;
}

TEST_F(CInterfaceMisuse, AVisitorDoesNotReleaseItsRecord) {
  const Decoded record(block_.Data());
  EXPECT_EQ(norv_battery_for_each_field(record.Get(), ReleaseInVisitor, record.Get()), NORV_BATTERY_OK);
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_CT_NUMBER).text, "6ABCDEFGH12345");
}

int32_t AnswerNothing(void* /*context*/, uint32_t /*first*/, uint32_t /*second*/, uint32_t /*third*/,
                      const uint8_t* /*input*/, uint32_t /*inputSize*/, uint8_t* /*output*/, uint32_t* /*returnCode*/) {
  return 0;
}

TEST_F(CInterfaceMisuse, AChannelThatWritesNoReturnCodeHasNoBattery) {
  options_.channel = AnswerNothing;
  const Collection collection(&options_);
  EXPECT_EQ(collection.Record(0), nullptr);
  EXPECT_EQ(CollectionFailure(collection.Get()).code, 0xFFFFFFFF);
}

TEST_F(CInterfaceMisuse, EveryStatusHasAText) {
  for (norv_battery_status status = NORV_BATTERY_OK; status <= NORV_BATTERY_IN_USE; ++status) {
    EXPECT_FALSE(Text([status](char* buffer, std::size_t size, std::size_t* needed) {
                   return norv_battery_status_text(status, buffer, size, needed);
                 }).empty());
  }
  for (const norv_battery_status status : {-1, NORV_BATTERY_IN_USE + 1}) {
    EXPECT_EQ(norv_battery_status_text(status, nullptr, 0, nullptr), NORV_BATTERY_INVALID_ARGUMENT);
  }
}

TEST(CInterface, HasAVersion) {
  EXPECT_EQ(norv_battery_interface_version(), NORV_BATTERY_INTERFACE_VERSION);
}

}  // namespace
}  // namespace norv::test::c
