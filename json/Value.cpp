#include "json/Value.h"

#include <algorithm>

namespace norv::json {

namespace {

constexpr std::size_t kFew = 16;  // keys that are found as fast one after another as in a map

const Value kNull;

}  // namespace

Object::Object() = default;
Object::Object(const Object& other) = default;
Object::Object(Object&& other) noexcept = default;
Object& Object::operator=(const Object& other) = default;
Object& Object::operator=(Object&& other) noexcept = default;
Object::~Object() = default;

Object::Object(std::initializer_list<Member> members) {
  members_.reserve(members.size());
  for (const Member& member : members) {
    (*this)[member.key] = member.value;
  }
}

const Member* Object::begin() const {
  return members_.data();
}

const Member* Object::end() const {
  return members_.data() + members_.size();
}

std::optional<std::size_t> Object::PlaceOf(std::string_view key) const {
  if (members_.size() > kFew) {
    const auto found = places_.find(key);
    return found != places_.end() ? std::optional(found->second) : std::nullopt;
  }
  const auto found =
      std::find_if(members_.begin(), members_.end(), [key](const Member& member) { return member.key == key; });
  return found != members_.end() ? std::optional(static_cast<std::size_t>(found - members_.begin())) : std::nullopt;
}

const Value* Object::Find(std::string_view key) const {
  const auto place = PlaceOf(key);
  return place ? &members_[*place].value : nullptr;
}

Value& Object::operator[](std::string_view key) {
  if (const auto place = PlaceOf(key)) {
    return members_[*place].value;
  }
  members_.push_back({std::string(key), Value()});
  if (members_.size() > kFew) {
    for (std::size_t place = places_.size(); place < members_.size(); ++place) {
      places_.emplace(members_[place].key, place);
    }
  }
  return members_.back().value;
}

bool operator==(const Object& left, const Object& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](const Member& one, const Member& other) {
    return one.key == other.key && one.value == other.value;
  });
}

std::optional<double> Value::Number() const {
  return std::visit(
      []<typename Type>(const Type& value) -> std::optional<double> {
        if constexpr (std::is_arithmetic_v<Type> && !std::same_as<Type, bool>) {
          return static_cast<double>(value);
        } else {
          return std::nullopt;
        }
      },
      content_);
}

const Value& Value::operator[](std::string_view key) const {
  const auto* const object = As<Object>();
  const Value* const found = object != nullptr ? object->Find(key) : nullptr;
  return found != nullptr ? *found : kNull;
}

const Value& Value::operator[](std::size_t index) const {
  const auto* const array = As<Array>();
  return array != nullptr && index < array->size() ? (*array)[index] : kNull;
}

bool operator==(const Value& left, const Value& right) {
  return left.content_ == right.content_;
}

}  // namespace norv::json
