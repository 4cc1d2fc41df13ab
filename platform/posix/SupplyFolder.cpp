#include "SupplyFolder.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

namespace norv::platform::posix {

namespace {

constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

}  // namespace

SupplyFolder::SupplyFolder(const std::string& path) : path_(path), folder_(::open(path.c_str(), kFlags)) {
}

std::vector<std::string> SupplyFolder::Names() const {
  std::vector<std::string> names;
  std::error_code failure;
  for (std::filesystem::directory_iterator entry(path_, failure), end; !failure && entry != end;
       entry.increment(failure)) {
    names.push_back(entry->path().filename().string());
    if (names.size() > kMostSupplies) {
      return {};
    }
  }
  return names;
}

// The supply's folder stays open for as long as it is read from.
AttributeReader SupplyFolder::Open(const std::string& name) const {
  return [supply = std::make_shared<FileDescriptor>(OpenSupply(name))](const char* attribute) {
    std::string text;
    const bool isRead =
        supply->IsOpen() && ReadOrdinaryFileAt(supply->Number(), attribute, kLongestAttribute, text) == 0;
    return isRead ? std::optional(std::move(text)) : std::nullopt;
  };
}

bool SupplyFolder::IsKernels() const {
  struct statfs system {};
  return ::fstatfs(folder_.Number(), &system) == 0 && system.f_type == SYSFS_MAGIC;
}

// The folder of one supply as a file descriptor; negative when it has none within its bounds.
int SupplyFolder::OpenSupply(const std::string& name) const {
  if (IsKernels()) {
    return ::openat(folder_.Number(), name.c_str(), kFlags);
  }
  open_how how{};
  how.flags = kFlags;
  how.resolve = RESOLVE_BENEATH;
  return static_cast<int>(::syscall(SYS_openat2, folder_.Number(), name.c_str(), &how, sizeof how));
}

}  // namespace norv::platform::posix
