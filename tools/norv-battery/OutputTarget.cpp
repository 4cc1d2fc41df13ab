#include "OutputTarget.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

#include "BinaryStreams.h"
#include "EscapeText.h"
#include "StandardStreams.h"

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
  Complain("--output: '" + EscapeText(NameOf(path)) + "' cannot be written to: " + reason);
}

std::string SystemMessage(int code) {
  return std::generic_category().message(code);
}

class StandardOutput : public OutputTarget {
 public:
  StandardOutput() { UseBinaryStreams(); }
  bool Write(std::string_view bytes) override { return WriteToStandardOutput(bytes); }
  bool Complete() override { return true; }
};

// A name beside `target` that nobody else has.
fs::path PartialPath(const fs::path& target) {
  std::random_device random;
  std::array<char, 16> suffix{};
  std::snprintf(suffix.data(), suffix.size(), ".%08x.part", random());
  fs::path path = target;
  path += suffix.data();
  return path;
}

class OutputFile : public OutputTarget {
 public:
  OutputFile(fs::path target, fs::path partial, std::FILE* file)
      : target_(std::move(target)), partial_(std::move(partial)), file_(file) {}
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile() override {
    if (file_ != nullptr) {
      std::fclose(file_);
    }
    std::error_code ignored;
    fs::remove(partial_, ignored);  // nothing, once it has been renamed
  }

  bool Write(std::string_view bytes) override {
    errno = 0;
    // A view of nothing may have no address, which fwrite() must not be given.
    if (bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), file_) == bytes.size()) {
      return true;
    }
    ComplainAbout(target_, SystemMessage(errno));
    return false;
  }

  bool Complete() override {
    errno = 0;
    if (std::fclose(std::exchange(file_, nullptr)) != 0) {
      ComplainAbout(target_, SystemMessage(errno));
      return false;
    }
    std::error_code failure;
    fs::rename(partial_, target_, failure);
    if (failure) {
      ComplainAbout(target_, failure.message());
    }
    return !failure;
  }

 private:
  fs::path target_;
  fs::path partial_;
  std::FILE* file_;
};

std::unique_ptr<OutputTarget> OpenFile(const std::string& path) {
  std::error_code failure;
  fs::path target = PathOf(path);
  if (fs::is_symlink(target, failure)) {
    target = fs::weakly_canonical(target, failure);  // the link stays one
  }
  const fs::file_status status = fs::status(target, failure);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    ComplainAbout(target, fs::is_directory(status) ? "it is a directory" : "it is no regular file");
    return nullptr;
  }
  fs::path partial = PartialPath(target);
  errno = 0;
  std::FILE* const file = std::fopen(NameOf(partial).c_str(), "wb");
  if (file == nullptr) {
    ComplainAbout(target, SystemMessage(errno));
    return nullptr;
  }
  return std::make_unique<OutputFile>(std::move(target), std::move(partial), file);
}

}  // namespace

std::unique_ptr<OutputTarget> OpenOutput(const std::optional<std::string>& path) {
  return path ? OpenFile(*path) : std::make_unique<StandardOutput>();
}

}  // namespace norv::tool
