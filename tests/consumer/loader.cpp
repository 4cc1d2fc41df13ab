// A host that loads the library at run time, and unloads it after the appender is gone: loader LIBRARY
#include <dlfcn.h>
#include <plog/Init.h>
#include <plog/Log.h>

#include <iostream>
#include <memory>

#include "Collector.h"

using InitializeLogger = void (*)(unsigned int, plog::IAppender*);

static int Fail(const char* what) {
  std::cerr << "loader: " << what << '\n';
  return 1;
}

int main(int argc, char** argv) {
  if (argc != 2) {
    return Fail("usage: loader LIBRARY");
  }
  Collector own;
  plog::init(plog::verbose, &own);
  for (int round = 0; round < 2; ++round) {
    void* library = dlopen(argv[1], RTLD_NOW | RTLD_GLOBAL);
    if (library == nullptr) {
      return Fail(dlerror());
    }
    auto initialize = reinterpret_cast<InitializeLogger>(dlsym(library, "norvSharedInitializeLogger"));
    if (initialize == nullptr) {
      return Fail("norvSharedInitializeLogger is not exported under its plain name");
    }
    auto appender = std::make_unique<Collector>();
    initialize(plog::verbose, appender.get());
    appender.reset();
    if (dlclose(library) != 0) {
      return Fail(dlerror());
    }
    // A symbol that is unique in the process would keep the library loaded for ever.
    if (dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) != nullptr) {
      return Fail("the library is still loaded after dlclose");
    }
  }
  PLOG_INFO << "still there";
  return own.Entries().size() == 1 ? 0 : Fail("the host's own logger did not survive the library");
}
