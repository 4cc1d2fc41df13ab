// Stands in for the standard library of the other Windows compiler, which is not at hand where its C++ ABI is checked:
// just the names that the public headers use, so that a compiler can read them. Nothing of it is ever linked or run.
#pragma once

using size_t = decltype(sizeof 0);

namespace std {

using ::size_t;
using int32_t = int;
using int64_t = long long;
using uint8_t = unsigned char;
using uint16_t = unsigned short;
using uint32_t = unsigned int;
using uint64_t = unsigned long long;

template <typename Character>
struct char_traits;

template <typename Value>
class allocator;

template <typename Character, typename Traits = char_traits<Character>, typename Allocator = allocator<Character>>
class basic_string {
 public:
  basic_string();
  basic_string(const basic_string&);
  basic_string& operator=(const basic_string&);
  ~basic_string();

 private:
  Character* data_;
};
using string = basic_string<char>;
using wstring = basic_string<wchar_t>;

template <typename Value>
class shared_ptr {
 public:
  shared_ptr() = default;
  shared_ptr(const shared_ptr&);
  shared_ptr& operator=(const shared_ptr&);
  ~shared_ptr();
  Value* get() const;
  bool operator==(const shared_ptr&) const;
  bool operator!=(const shared_ptr&) const;

 private:
  Value* value_ = nullptr;
};

template <typename Value>
class unique_ptr {
 public:
  ~unique_ptr();

 private:
  Value* value_;
};

template <typename Value>
class vector {
 public:
  const Value* begin() const;
  const Value* end() const;
  void push_back(const Value&);
  ~vector();

 private:
  Value* data_ = nullptr;
};

template <typename Value>
Value&& move(Value& value);

}  // namespace std
