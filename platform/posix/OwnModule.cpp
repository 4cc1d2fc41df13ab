#include "OwnModule.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>

#include <array>
#include <climits>
#include <cstdlib>

namespace norv::platform::posix {

namespace {

// Plain data, which nothing has to destroy when the library is unloaded. An empty path is one that is not known.
struct OwnFile {
  std::array<char, PATH_MAX> path{};
  dev_t device = 0;
  ino_t inode = 0;
};

// The name that the loader opened the file by.
const char* LoadedName() {
  Dl_info module{};
  void* entry = nullptr;
  if (dladdr1(reinterpret_cast<const void*>(&LoadedName), &module, &entry, RTLD_DL_LINKMAP) == 0) {
    return "";
  }
  // The loader keeps no name of the program itself, and what dladdr() tells in its place is the host's to choose.
  const char* const name = static_cast<const link_map*>(entry)->l_name;
  return *name == '\0' ? "/proc/self/exe" : name;
}

OwnFile Find() {
  OwnFile own;
  struct stat status {};
  if (realpath(LoadedName(), own.path.data()) == nullptr || stat(own.path.data(), &status) != 0) {
    return {};
  }
  own.device = status.st_dev;
  own.inode = status.st_ino;
  return own;
}

const OwnFile& Own() {
  static const OwnFile own = Find();
  return own;
}

// The loader's name may begin at the working folder, which the host may change at any time: by then it would lead to a
// folder that is not the library's. So it is resolved while the library is loaded.
[[gnu::constructor]] void FindWhileLoading() {
  Own();
}

}  // namespace

std::optional<std::string> OwnPath() {
  const OwnFile& own = Own();
  struct stat now {};
  if (stat(own.path.data(), &now) != 0 || now.st_dev != own.device || now.st_ino != own.inode) {
    return std::nullopt;
  }
  return own.path.data();
}

std::string OwnName() {
  const std::string path = Own().path.data();
  return path.substr(path.find_last_of('/') + 1);
}

}  // namespace norv::platform::posix
