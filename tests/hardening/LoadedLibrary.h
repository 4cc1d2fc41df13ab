// The shared library, loaded at run time.
#pragma once

#include <stdexcept>
#include <string>

#include "Process.h"

namespace norv::test {

// Loaded for as long as it lives. Throws std::runtime_error for what is not there.
class LoadedLibrary {
 public:
  explicit LoadedLibrary(const std::string& path) : handle_(LoadLibraryFile(path.c_str())) {
    if (handle_ == nullptr) {
      throw std::runtime_error(path + " cannot be loaded");
    }
  }
  LoadedLibrary(const LoadedLibrary&) = delete;
  LoadedLibrary& operator=(const LoadedLibrary&) = delete;
  ~LoadedLibrary() { UnloadLibrary(handle_); }

  template <typename Function>
  Function* Find(const std::string& name) const {
    void* const found = FindFunction(handle_, name.c_str());
    if (found == nullptr) {
      throw std::runtime_error("the library has no " + name);
    }
    return reinterpret_cast<Function*>(found);
  }

 private:
  void* handle_;
};

}  // namespace norv::test
