#include "NarrowPath.h"

#include <windows.h>

#include <string_view>
#include <utility>

namespace norv::platform::windows {

namespace {

UINT CodePage() {
  return AreFileApisANSI() != FALSE ? CP_ACP : CP_OEMCP;
}

std::string Narrow(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(CodePage(), 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CodePage(), 0, text.data(), length, narrow.data(), needed, nullptr, nullptr);
  return narrow;
}

std::wstring Widen(const std::string& text) {
  const int length = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CodePage(), 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(CodePage(), 0, text.data(), length, wide.data(), needed);
  return wide;
}

bool IsSeparator(char character) {
  return character == '\\' || character == '/';
}

}  // namespace

// There and back: the flag that asks for no similar characters is not known to every code page.
std::optional<std::string> NarrowPath(const std::wstring& path) {
  std::string narrow = Narrow(path);
  return Widen(narrow) == path ? std::optional(std::move(narrow)) : std::nullopt;
}

bool IsFullPath(const char* path) {
  const std::string_view text = path != nullptr ? path : "";
  const bool beginsAtADrive = text.size() > 2 && text[1] == ':' && IsSeparator(text[2]);
  const bool beginsAtTheNetwork = text.size() > 2 && IsSeparator(text[0]) && IsSeparator(text[1]);
  return beginsAtADrive || beginsAtTheNetwork;
}

}  // namespace norv::platform::windows
