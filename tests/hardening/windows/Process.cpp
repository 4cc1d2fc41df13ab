#include "../Process.h"

#include <windows.h>

#include <psapi.h>

namespace norv::test {

std::size_t ResidentSize() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.WorkingSetSize;
}

std::size_t PeakResidentSize() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PeakWorkingSetSize;
}

void* LoadLibraryFile(const char* path) {
  return LoadLibraryA(path);
}

void* FindFunction(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

bool UnloadLibrary(void* library) {
  return FreeLibrary(static_cast<HMODULE>(library)) != FALSE;
}

bool IsLibraryLoaded(const char* path) {
  return GetModuleHandleA(path) != nullptr;
}

}  // namespace norv::test
