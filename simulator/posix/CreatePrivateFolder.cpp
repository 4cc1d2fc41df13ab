#include "play/CreatePrivateFolder.h"

#include <sys/stat.h>

namespace norv::simulator {

bool CreatePrivateFolder(const std::filesystem::path& folder) {
  return ::mkdir(folder.c_str(), S_IRWXU) == 0;
}

}  // namespace norv::simulator
