#include "output/OutputTarget.h"

#include <filesystem>
#include <system_error>

#include "output/BinaryStreams.h"
#include "output/EscapeText.h"
#include "output/PartialFile.h"
#include "output/StandardStreams.h"

namespace norv::tool {

namespace {

namespace fs = std::filesystem;

// The texts of this program are UTF-8 on every system; a path made of a plain text need not take them as such.
fs::path PathOf(const std::string& name) {
  return std::u8string(name.begin(), name.end());
}

std::string NameOf(const fs::path& path) {
  const std::u8string name = path.u8string();
  return {name.begin(), name.end()};
}

void ComplainAbout(const fs::path& path, const std::string& reason) {
  Complain("--output: " + Quote(NameOf(path)) + " cannot be written to: " + reason);
}

class StandardOutput : public OutputTarget {
 public:
  StandardOutput() { UseBinaryStreams(); }
  bool Write(std::string_view bytes) override { return WriteToStandardOutput(bytes); }
  bool Complete() override { return true; }
};

class OutputFile : public OutputTarget {
 public:
  // Throws std::system_error.
  explicit OutputFile(const fs::path& target) : target_(target), file_(PartialFile::Create(target)) {}

  bool Write(std::string_view bytes) override {
    return Attempt([&] { file_->Write(bytes); });
  }
  bool Complete() override {
    return Attempt([this] { file_->ReplaceTarget(); });
  }

 private:
  template <typename Action>
  bool Attempt(Action action) {
    try {
      action();
    } catch (const std::system_error& failure) {
      ComplainAbout(target_, failure.code().message());
      return false;
    }
    return true;
  }

  fs::path target_;
  std::unique_ptr<PartialFile> file_;
};

// Why nothing can be put in the place of what `path` leads to; empty where something can. The system is asked for the
// whole way: it follows no circle of links, and no link that somebody else laid into a folder for all.
std::string Obstacle(const fs::path& path) {
  if (path.empty()) {
    return "it has no name";
  }
  std::error_code failure;
  const fs::file_status status = fs::status(path, failure);
  if (!fs::status_known(status)) {
    return failure.message();
  }
  if (fs::is_directory(status)) {
    return "it is a directory";
  }
  return !fs::exists(status) || fs::is_regular_file(status) ? "" : "it is no regular file";
}

// What `path` leads to, which need not exist: a link stays one, and what it names is written.
fs::path FollowLinks(fs::path path) {
  constexpr int kMostLinks = 40;  // where the system gives up, too
  std::error_code ignored;
  for (int links = 0; links < kMostLinks && fs::is_symlink(fs::symlink_status(path, ignored)); ++links) {
    path = path.parent_path() / fs::read_symlink(path, ignored);
  }
  return path;
}

std::unique_ptr<OutputTarget> OpenFile(const fs::path& path) {
  if (const std::string obstacle = Obstacle(path); !obstacle.empty()) {
    ComplainAbout(path, obstacle);
    return nullptr;
  }
  const fs::path target = FollowLinks(path);
  try {
    return std::make_unique<OutputFile>(target);
  } catch (const std::system_error& failure) {
    ComplainAbout(target, failure.code().message());
    return nullptr;
  }
}

}  // namespace

std::unique_ptr<OutputTarget> OpenOutput(const std::optional<std::string>& path) {
  return path ? OpenFile(PathOf(*path)) : std::make_unique<StandardOutput>();
}

}  // namespace norv::tool
