// Owners for what COM hands out.
#pragma once

#include <oleauto.h>
#include <windows.h>

#include <new>
#include <string>
#include <utility>

namespace norv::platform::windows {

// An interface pointer, released once.
template <typename Interface>
class ComPointer {
 public:
  ComPointer() = default;
  ComPointer(ComPointer&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ComPointer& operator=(ComPointer&& other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ComPointer(const ComPointer&) = delete;
  ComPointer& operator=(const ComPointer&) = delete;
  ~ComPointer() { Reset(); }

  void Reset() {
    if (Interface* const pointer = std::exchange(pointer_, nullptr)) {
      pointer->Release();
    }
  }

  // For an out-parameter; what was held before is released.
  Interface** Receive() {
    Reset();
    return &pointer_;
  }

  Interface* Get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }

 private:
  Interface* pointer_ = nullptr;
};

// A text as COM takes it.
class BasicString {
 public:
  explicit BasicString(const std::wstring& text)
      : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {
    if (text_ == nullptr) {
      throw std::bad_alloc();
    }
  }
  BasicString(const BasicString&) = delete;
  BasicString& operator=(const BasicString&) = delete;
  ~BasicString() { SysFreeString(text_); }

  BSTR Get() const { return text_; }

 private:
  BSTR text_;
};

class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(&value_); }

  VARIANT* Receive() {
    VariantClear(&value_);
    return &value_;
  }
  const VARIANT& Get() const { return value_; }

  // Converts in place, the same on every machine whatever its language. The code of the failure, or S_OK.
  HRESULT ChangeType(VARTYPE type) {
    return VariantChangeTypeEx(&value_, &value_, LOCALE_INVARIANT, VARIANT_NOUSEROVERRIDE | VARIANT_ALPHABOOL, type);
  }

 private:
  VARIANT value_;
};

}  // namespace norv::platform::windows
