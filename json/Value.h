// A JSON value as a tree.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace norv::json {

class Value;
struct Member;

using Array = std::vector<Value>;

// Members in the order in which they were added; no two have the same key.
class Object {
 public:
  // None of these is made by the compiler here, where a member is not known yet.
  Object();
  Object(std::initializer_list<Member> members);
  Object(const Object& other);
  Object(Object&& other) noexcept;
  Object& operator=(const Object& other);
  Object& operator=(Object&& other) noexcept;
  ~Object();

  bool IsEmpty() const { return begin() == end(); }

  // Null where no member has this key.
  const Value* Find(std::string_view key) const;

  // The member of this key, added as a null where there is none.
  Value& operator[](std::string_view key);

  const Member* begin() const;
  const Member* end() const;

  friend bool operator==(const Object& left, const Object& right);

 private:
  std::optional<std::size_t> PlaceOf(std::string_view key) const;

  std::vector<Member> members_;
  std::map<std::string, std::size_t, std::less<>> places_;  // of the keys, once there are more than a few
};

class Value {
 public:
  // A whole number that is not negative is always an unsigned one: numbers that are equal are equal values.
  using Content = std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, Array, Object>;

  // NOLINTBEGIN(google-explicit-constructor): trees are written down as Object{{"code", 2}, {"name", "x"}}.
  Value() = default;
  Value(std::nullptr_t) {}
  Value(std::same_as<bool> auto truth) : content_(truth) {}
  template <std::integral Integer>
  requires(!std::same_as<Integer, bool>) Value(Integer number) {
    if (std::in_range<std::uint64_t>(number)) {
      content_ = static_cast<std::uint64_t>(number);
    } else {
      content_ = static_cast<std::int64_t>(number);
    }
  }
  Value(double number) : content_(number) {}
  Value(const char* text) : content_(std::string(text)) {}
  Value(std::string_view text) : content_(std::string(text)) {}
  Value(std::string text) : content_(std::move(text)) {}
  Value(Array array) : content_(std::move(array)) {}
  Value(Object object) : content_(std::move(object)) {}
  template <typename Type>
  Value(const std::optional<Type>& value) : Value(value ? Value(*value) : Value()) {}
  // NOLINTEND(google-explicit-constructor)

  bool IsNull() const { return Is<std::monostate>(); }
  template <typename Type>
  bool Is() const {
    return std::holds_alternative<Type>(content_);
  }

  // Null where the value is of another type.
  template <typename Type>
  const Type* As() const {
    return std::get_if<Type>(&content_);
  }
  template <typename Type>
  Type* As() {
    return std::get_if<Type>(&content_);
  }

  // A number of any type.
  std::optional<double> Number() const;

  const Content& Any() const { return content_; }

  // What is not there is null.
  const Value& operator[](std::string_view key) const;
  const Value& operator[](std::size_t index) const;

  friend bool operator==(const Value& left, const Value& right);

 private:
  Content content_;
};

struct Member {
  std::string key;
  Value value;
};

// An array of what `range` holds.
template <typename Range>
Array ToArray(const Range& range) {
  return Array(range.begin(), range.end());
}

}  // namespace norv::json
