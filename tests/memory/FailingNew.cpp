#include "FailingNew.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace norv::test {

namespace {

constexpr std::size_t kNever = static_cast<std::size_t>(-1);

thread_local std::size_t remaining = kNever;
thread_local bool reached = false;

void* Allocate(std::size_t size) {
  if (remaining != kNever && remaining-- == 0) {
    remaining = kNever;
    reached = true;
    throw std::bad_alloc();
  }
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  std::memset(memory, kOldByte, size);
  return memory;
}

}  // namespace

void FailAllocation(std::size_t count) {
  remaining = count;
  reached = false;
}

bool StopFailing() {
  remaining = kNever;
  return reached;
}

}  // namespace norv::test

void* operator new(std::size_t size) {
  return norv::test::Allocate(size);
}
void* operator new[](std::size_t size) {
  return norv::test::Allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
