#include "play/PrivateFolder.h"

#include <fstream>
#include <random>
#include <system_error>

#include "play/CreatePrivateFolder.h"

namespace norv::simulator {

namespace {

constexpr int kAttempts = 16;

// Creates a folder of a name that nobody else uses; empty when there is no place for one.
std::filesystem::path MakeFolder() {
  std::error_code failure;
  const std::filesystem::path parent = std::filesystem::temp_directory_path(failure);
  std::random_device random;
  for (int attempt = 0; !failure && attempt < kAttempts; ++attempt) {
    const std::string number = std::to_string(random()) + std::to_string(random());
    std::filesystem::path folder = parent / ("norv-simulated-machine-" + number);
    if (CreatePrivateFolder(folder)) {
      return folder;
    }
  }
  return {};
}

}  // namespace

PrivateFolder::~PrivateFolder() {
  if (!path_.empty()) {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
}

std::string PrivateFolder::Path() {
  const std::lock_guard lock(mutex_);
  if (path_.empty()) {
    path_ = MakeFolder();
  }
  return path_.string();
}

// Moved into place whole, so that a reader on another thread finds the report before or this one, and never a part.
void PrivateFolder::WriteReport(const std::string& report) {
  const std::filesystem::path root = Path();
  if (root.empty()) {
    return;
  }
  const std::filesystem::path file = root.string() + kReportFile;
  const std::filesystem::path folder = file.parent_path();
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  const std::lock_guard lock(mutex_);
  std::ofstream(folder / "Battery.new", std::ios::binary) << report;
  std::filesystem::rename(folder / "Battery.new", file, ignored);
}

void PrivateFolder::RemoveReport() {
  const std::lock_guard lock(mutex_);
  if (!path_.empty()) {
    std::error_code ignored;
    std::filesystem::remove(path_.string() + kReportFile, ignored);
  }
}

}  // namespace norv::simulator
