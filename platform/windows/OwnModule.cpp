#include "OwnModule.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <cwchar>

#include "NarrowPath.h"

namespace norv::platform::windows {

namespace {

// A text that lies in this library: whichever module holds it is the library's own, however it was loaded and named.
constexpr const wchar_t* kOwnText = L"norvSharedInitializeLogger";

// Not counted as a use of the module: nothing has to be given back. Null when it is not found.
HMODULE OwnHandle() {
  HMODULE module = nullptr;
  constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  return GetModuleHandleExW(kFlags, kOwnText, &module) != FALSE ? module : nullptr;
}

// Without a handle the system would answer with the path of the host. A path that fills the buffer was cut. The first
// buffer does for nearly all: the longest would stay in the memory of a host that loads the library again and again,
// where the runtime keeps its reserve for exceptions in the place that it leaves.
std::wstring WidePath() {
  const HMODULE module = OwnHandle();
  std::wstring path(module != nullptr ? MAX_PATH : 0, L'\0');
  while (module != nullptr) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      break;
    }
    path.resize(2 * path.size());
  }
  return path;
}

}  // namespace

std::uint32_t OwnPath(char* buffer, std::uint32_t size) {
  if (size == 0) {
    return 0;
  }
  const std::string path = NarrowPath(WidePath()).value_or("");
  const std::size_t written = path.copy(buffer, size - 1);
  buffer[written] = '\0';
  return static_cast<std::uint32_t>(written);
}

std::wstring OwnName() {
  std::array<wchar_t, MAX_PATH> path{};
  const HMODULE module = OwnHandle();
  if (module == nullptr || GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())) == 0) {
    return {};
  }
  path.back() = L'\0';
  const wchar_t* const separator = std::wcsrchr(path.data(), L'\\');
  return separator != nullptr ? separator + 1 : L"";
}

}  // namespace norv::platform::windows
