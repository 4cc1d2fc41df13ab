// The C interface in the hands of a C++ test: values by value, buffers managed.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "battery/norv_battery.h"

namespace norv::test::c {

// For what a test takes for granted.
inline void Demand(norv_battery_status status) {
  if (status != NORV_BATTERY_OK) {
    throw std::runtime_error("the C interface answers status " + std::to_string(status));
  }
}

template <typename Structure>
Structure Sized() {
  Structure structure{};
  structure.size = sizeof structure;
  return structure;
}

// Asks for the size first, then for the text: copy(buffer, size, needed).
template <typename Copy>
std::string Text(Copy copy) {
  std::size_t needed = 0;
  Demand(copy(nullptr, std::size_t{0}, &needed));
  std::string text(needed, '?');
  Demand(copy(text.data(), text.size(), &needed));
  text.pop_back();
  return text;
}

struct Value {
  norv_battery_value value;
  std::string text;
};

// read(value, text, size)
template <typename Read>
Value ReadValue(Read read) {
  Value result{Sized<norv_battery_value>(), ""};
  Demand(read(&result.value, nullptr, std::size_t{0}));
  result.text.assign(result.value.textSize, '?');
  Demand(read(&result.value, result.text.data(), result.text.size()));
  result.text.pop_back();
  return result;
}

inline Value ReadField(const norv_battery_record* record, std::int32_t field) {
  return ReadValue([=](norv_battery_value* value, char* text, std::size_t size) {
    return norv_battery_read_field(record, field, value, text, size);
  });
}

inline Value ReadTest(const norv_battery_collection* collection, std::int32_t field) {
  return ReadValue([=](norv_battery_value* value, char* text, std::size_t size) {
    return norv_battery_read_test(collection, field, value, text, size);
  });
}

inline norv_battery_description Describe(std::int32_t field) {
  auto description = Sized<norv_battery_description>();
  Demand(norv_battery_describe_field(field, &description));
  return description;
}

inline std::vector<std::uint8_t> ReadBytes(const norv_battery_record* record, std::int32_t field) {
  std::size_t needed = 0;
  Demand(norv_battery_read_bytes(record, field, nullptr, 0, &needed));
  std::vector<std::uint8_t> bytes(needed);
  Demand(norv_battery_read_bytes(record, field, bytes.data(), bytes.size(), nullptr));
  return bytes;
}

struct Failure {
  std::int32_t category = 0;
  std::int64_t code = 0;
  std::string message;
  std::string type;
  std::string function;

  bool operator==(const Failure& other) const = default;
};

// error(target) and text(part, buffer, size, needed) are functions of the interface with their handle bound.
template <typename ReadError, typename ReadText>
Failure ReadFailure(ReadError readError, ReadText readText) {
  auto error = Sized<norv_battery_error>();
  Demand(readError(&error));
  const auto part = [&readText](std::int32_t which) {
    return Text(
        [&](char* buffer, std::size_t size, std::size_t* needed) { return readText(which, buffer, size, needed); });
  };
  return {error.category, error.code, part(NORV_BATTERY_ERROR_MESSAGE), part(NORV_BATTERY_ERROR_TYPE),
          part(NORV_BATTERY_ERROR_FUNCTION)};
}

inline Failure CollectionFailure(const norv_battery_collection* collection) {
  return ReadFailure([=](norv_battery_error* error) { return norv_battery_collection_error(collection, error); },
                     [=](std::int32_t part, char* buffer, std::size_t size, std::size_t* needed) {
                       return norv_battery_collection_error_text(collection, part, buffer, size, needed);
                     });
}

inline Failure TestFailure(const norv_battery_collection* collection) {
  return ReadFailure([=](norv_battery_error* error) { return norv_battery_test_error(collection, error); },
                     [=](std::int32_t part, char* buffer, std::size_t size, std::size_t* needed) {
                       return norv_battery_test_error_text(collection, part, buffer, size, needed);
                     });
}

inline Failure FieldFailure(const norv_battery_record* record, std::int32_t field) {
  return ReadFailure([=](norv_battery_error* error) { return norv_battery_field_error(record, field, error); },
                     [=](std::int32_t part, char* buffer, std::size_t size, std::size_t* needed) {
                       return norv_battery_field_error_text(record, field, part, buffer, size, needed);
                     });
}

// A collection that is closed with its scope.
class Collection {
 public:
  explicit Collection(const norv_battery_options* options = nullptr) { Demand(norv_battery_open(options, &handle_)); }
  Collection(const Collection&) = delete;
  Collection& operator=(const Collection&) = delete;
  ~Collection() { norv_battery_close(handle_); }

  norv_battery_collection* Get() const { return handle_; }

  // Null where the slot holds no battery.
  norv_battery_record* Record(std::uint32_t slot) const {
    norv_battery_record* record = nullptr;
    if (norv_battery_get_record(handle_, slot, &record) != NORV_BATTERY_NO_BATTERY && record == nullptr) {
      throw std::runtime_error("no record, and not for lack of a battery");
    }
    return record;
  }

 private:
  norv_battery_collection* handle_ = nullptr;
};

// A decoded record that is released with its scope.
class Decoded {
 public:
  explicit Decoded(const std::uint8_t* block, const std::uint8_t* cellSwell = nullptr) {
    Demand(norv_battery_decode(block, NORV_BATTERY_BLOCK_SIZE, cellSwell,
                               cellSwell != nullptr ? NORV_BATTERY_BLOCK_SIZE : 0, &handle_));
  }
  Decoded(const Decoded&) = delete;
  Decoded& operator=(const Decoded&) = delete;
  ~Decoded() { norv_battery_release(handle_); }

  norv_battery_record* Get() const { return handle_; }

 private:
  norv_battery_record* handle_ = nullptr;
};

}  // namespace norv::test::c
