#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

namespace norv::tool {

// The file that an output is written to until it is complete: beside its target, under a name that nobody can guess, so
// that nothing that lies there is ever followed or written to. It has the rights of the file that it is to replace;
// where there is none, they are the user's alone, because what the tool writes holds serial numbers.
//
// It is gone when it is destroyed without having replaced its target, and also when the process is ended by an
// interrupt (Ctrl-C and its like on Windows, elsewhere SIGINT, SIGTERM, SIGHUP and SIGQUIT). There is one at a time.
class PartialFile {
 public:
  // Throws std::system_error, as each operation does.
  static std::unique_ptr<PartialFile> Create(const std::filesystem::path& target);

  virtual ~PartialFile() = default;

  virtual void Write(std::string_view bytes) = 0;

  // The last operation: puts the file into its target's place, where it also is after a loss of power.
  virtual void ReplaceTarget() = 0;
};

// "norv-battery-0123456789abcdef.part", another one each time. It is short whatever the target's name is.
std::filesystem::path MakePartialName();

}  // namespace norv::tool
