#include "OrdinaryFile.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <array>
#include <cstdint>
#include <utility>

#include "NarrowPath.h"
#include "base/windows/Handle.h"

namespace norv::platform {

namespace {

// Takes a file over to read it as the C library reads text: a line ends with one character, and the file at its first
// Ctrl-Z.
class TextFile {
 public:
  explicit TextFile(base::Handle& handle)
      : number_(_open_osfhandle(reinterpret_cast<std::intptr_t>(handle.Get()), kMode)) {
    if (number_ >= 0) {
      handle.Release();
    }
  }
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  ~TextFile() {
    if (number_ >= 0) {
      _close(number_);
    }
  }

  // The number of bytes; 0 at the end, negative on failure.
  int Read(std::array<char, 4096>& chunk) const {
    return number_ >= 0 ? _read(number_, chunk.data(), static_cast<unsigned int>(chunk.size())) : -1;
  }

 private:
  static constexpr int kMode = _O_RDONLY | _O_TEXT;

  int number_;
};

// Whoever waits behind a pipe of that name must not act in the caller's name.
HANDLE Open(const char* path) {
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  constexpr DWORD kFlags = FILE_ATTRIBUTE_NORMAL | SECURITY_SQOS_PRESENT | SECURITY_ANONYMOUS;
  return CreateFileA(path, GENERIC_READ, kShare, nullptr, OPEN_EXISTING, kFlags, nullptr);
}

// ERROR_SUCCESS for a file that may be read.
DWORD Check(HANDLE file, std::size_t limit) {
  LARGE_INTEGER size{};
  if (GetFileType(file) != FILE_TYPE_DISK) {
    return ERROR_ACCESS_DENIED;
  }
  if (GetFileSizeEx(file, &size) == FALSE) {
    return GetLastError();
  }
  return static_cast<std::uint64_t>(size.QuadPart) > limit ? ERROR_FILE_TOO_LARGE : ERROR_SUCCESS;
}

// The size is looked at again: the file may grow meanwhile.
DWORD ReadToEnd(const TextFile& file, std::size_t limit, std::string& content) {
  std::array<char, 4096> chunk{};
  while (true) {
    const int count = file.Read(chunk);
    if (count == 0) {
      return ERROR_SUCCESS;
    }
    if (count < 0) {
      return ERROR_READ_FAULT;
    }
    content.append(chunk.data(), static_cast<std::size_t>(count));
    if (content.size() > limit) {
      return ERROR_FILE_TOO_LARGE;
    }
  }
}

DWORD Read(const char* path, std::size_t limit, std::string& content) {
  if (!windows::IsFullPath(path)) {
    return ERROR_BAD_PATHNAME;
  }
  base::Handle handle(Open(path));
  if (!handle.IsOpen()) {
    return GetLastError();
  }
  const DWORD failure = Check(handle.Get(), limit);
  return failure == ERROR_SUCCESS ? ReadToEnd(TextFile(handle), limit, content) : failure;
}

}  // namespace

std::optional<std::string> ReadOrdinaryFile(const char* path, std::size_t limit) {
  std::string content;
  const DWORD failure = Read(path, limit, content);
  SetLastError(failure);  // closing the file may have left another one
  return failure == ERROR_SUCCESS ? std::optional(std::move(content)) : std::nullopt;
}

}  // namespace norv::platform
