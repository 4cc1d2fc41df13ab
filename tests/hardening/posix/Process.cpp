#include "../Process.h"

#include <dlfcn.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

namespace norv::test {

std::size_t ResidentSize() {
  std::ifstream file("/proc/self/statm");
  std::size_t total = 0;
  std::size_t resident = 0;
  file >> total >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::size_t PeakResidentSize() {
  struct rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

void* LoadLibraryFile(const char* path) {
  return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

void* FindFunction(void* library, const char* name) {
  return dlsym(library, name);
}

bool UnloadLibrary(void* library) {
  return dlclose(library) == 0;
}

bool IsLibraryLoaded(const char* path) {
  return dlopen(path, RTLD_NOW | RTLD_NOLOAD) != nullptr;
}

}  // namespace norv::test
