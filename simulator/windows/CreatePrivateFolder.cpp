#include "play/CreatePrivateFolder.h"

#include <system_error>

namespace norv::simulator {

// What lies in the temporary folder is the user's own already.
bool CreatePrivateFolder(const std::filesystem::path& folder) {
  std::error_code failure;
  return std::filesystem::create_directory(folder, failure);
}

}  // namespace norv::simulator
