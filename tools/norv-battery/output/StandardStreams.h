// Standard output and standard error as the tool uses them.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace norv::tool {

// Standard error: complete lines, and below them at most one line that comes and goes. Any thread may write.
class StandardError {
 public:
  // Lives until the process has ended: the library may log for as long as it is loaded.
  static StandardError& Instance();

  void WriteLine(std::string_view line);

  // Shows `line`, which replaces the one shown before.
  void ShowPassingLine(std::string_view line);
  void ClearPassingLine();

 private:
  StandardError() = default;
  void Erase();

  std::mutex mutex_;
  std::size_t passingWidth_ = 0;
};

// Writes "norv-battery: `message`" to standard error, its lines as PrintableLine() gives them.
void Complain(const std::string& message);

// False when not all of `text` could be written; that has then been said on standard error, unless just nobody reads
// the output any more, or an interrupt ended the wait for its reader.
bool WriteToStandardOutput(std::string_view text);

}  // namespace norv::tool
