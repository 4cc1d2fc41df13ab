// What these tests ask the system about their own process.
#pragma once

#include <cstddef>

namespace norv::test {

// The memory that the process holds in RAM, in bytes.
std::size_t ResidentSize();

// The most that it ever held there.
std::size_t PeakResidentSize();

// Libraries that are loaded at run time, as the system does it. Each returns null or false on failure.
void* LoadLibraryFile(const char* path);
void* FindFunction(void* library, const char* name);
bool UnloadLibrary(void* library);
bool IsLibraryLoaded(const char* path);

}  // namespace norv::test
