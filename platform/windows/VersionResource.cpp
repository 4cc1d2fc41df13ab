#include "VersionResource.h"

#include <windows.h>

#include <cstdint>
#include <vector>

#include "LastErrorKeeper.h"
#include "NarrowPath.h"

namespace norv::platform::windows {

namespace {

std::optional<ProductVersion> FindProductVersion(const std::vector<unsigned char>& resource) {
  void* root = nullptr;
  UINT size = 0;
  if (VerQueryValueA(resource.data(), "\\", &root, &size) == FALSE) {
    return std::nullopt;
  }
  if (root == nullptr || size < sizeof(VS_FIXEDFILEINFO)) {
    SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
    return std::nullopt;
  }
  const auto* const fixed = static_cast<const VS_FIXEDFILEINFO*>(root);
  return ProductVersion{HIWORD(fixed->dwProductVersionMS), LOWORD(fixed->dwProductVersionMS),
                        HIWORD(fixed->dwProductVersionLS), LOWORD(fixed->dwProductVersionLS)};
}

}  // namespace

std::optional<ProductVersion> ReadProductVersion(const char* path) {
  if (!IsFullPath(path)) {
    SetLastError(ERROR_BAD_PATHNAME);
    return std::nullopt;
  }
  LastErrorKeeper lastError;
  const DWORD size = GetFileVersionInfoSizeA(path, nullptr);
  if (size == 0) {
    return std::nullopt;
  }
  std::vector<unsigned char> resource(size);
  std::optional<ProductVersion> version;
  if (GetFileVersionInfoA(path, 0, size, resource.data()) != FALSE) {
    version = FindProductVersion(resource);
  }
  if (!version) {
    lastError.Keep();
  }
  return version;
}

}  // namespace norv::platform::windows
