#include "output/PartialFile.h"

#include <windows.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "base/windows/Handle.h"

namespace norv::tool {

namespace {

std::system_error LastFailure() {
  return {static_cast<int>(GetLastError()), std::system_category()};
}

void Check(bool isDone) {
  if (!isDone) {
    throw LastFailure();
  }
}

// A place for a structure that is followed by what it refers to, of a size that only the system knows.
using Bytes = std::vector<unsigned char>;

// The rights of `target`; nothing where there is none.
Bytes RightsOf(const std::filesystem::path& target) {
  constexpr SECURITY_INFORMATION kRights = DACL_SECURITY_INFORMATION;
  DWORD size = 0;
  GetFileSecurityW(target.c_str(), kRights, nullptr, 0, &size);
  Bytes descriptor(size);
  const bool isTold = size > 0 && GetFileSecurityW(target.c_str(), kRights, descriptor.data(), size, &size) != FALSE;
  return isTold ? descriptor : Bytes();
}

Bytes CurrentUser() {
  base::Handle token;
  Check(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.Receive()) != FALSE);
  DWORD size = 0;
  GetTokenInformation(token.Get(), TokenUser, nullptr, 0, &size);
  Bytes user(size);
  Check(GetTokenInformation(token.Get(), TokenUser, user.data(), size, &size) != FALSE);
  return user;
}

// All rights for the user and none for anybody else, whatever the folder would hand down.
class UsersAlone {
 public:
  UsersAlone() : user_(CurrentUser()) {
    auto* const user = reinterpret_cast<TOKEN_USER*>(user_.data())->User.Sid;
    list_.resize(sizeof(ACL) + sizeof(ACCESS_ALLOWED_ACE) + GetLengthSid(user));
    auto* const list = reinterpret_cast<ACL*>(list_.data());
    Check(InitializeAcl(list, static_cast<DWORD>(list_.size()), ACL_REVISION) != FALSE &&
          AddAccessAllowedAce(list, ACL_REVISION, FILE_ALL_ACCESS, user) != FALSE &&
          InitializeSecurityDescriptor(&descriptor_, SECURITY_DESCRIPTOR_REVISION) != FALSE &&
          SetSecurityDescriptorDacl(&descriptor_, TRUE, list, FALSE) != FALSE &&
          SetSecurityDescriptorControl(&descriptor_, SE_DACL_PROTECTED, SE_DACL_PROTECTED) != FALSE);
  }

  SECURITY_DESCRIPTOR* Descriptor() { return &descriptor_; }

 private:
  Bytes user_;
  Bytes list_;
  SECURITY_DESCRIPTOR descriptor_{};
};

// May be deleted while it is open: that is how an interrupt removes it.
HANDLE CreateNew(const std::filesystem::path& partial, const std::filesystem::path& target) {
  UsersAlone usersAlone;
  Bytes former = RightsOf(target);
  SECURITY_ATTRIBUTES attributes{};
  attributes.nLength = sizeof attributes;
  attributes.lpSecurityDescriptor = former.empty() ? static_cast<void*>(usersAlone.Descriptor()) : former.data();
  const HANDLE file = CreateFileW(partial.c_str(), GENERIC_WRITE, FILE_SHARE_DELETE, &attributes, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  Check(file != INVALID_HANDLE_VALUE);
  return file;
}

// What there is to be removed; empty for nothing.
std::mutex partialMutex;
std::wstring partialName;

// Called on a thread of its own. It handles nothing: the process ends as ever.
BOOL WINAPI RemovePartialFile(DWORD) {
  const std::lock_guard lock(partialMutex);
  if (!partialName.empty()) {
    DeleteFileW(partialName.c_str());
  }
  return FALSE;
}

// While it lives, what ends the process removes the file of this name.
class RemovedInTheEnd {
 public:
  explicit RemovedInTheEnd(const std::wstring& name) {
    Tell(name);
    SetConsoleCtrlHandler(RemovePartialFile, TRUE);
  }
  RemovedInTheEnd(const RemovedInTheEnd&) = delete;
  RemovedInTheEnd& operator=(const RemovedInTheEnd&) = delete;
  ~RemovedInTheEnd() {
    SetConsoleCtrlHandler(RemovePartialFile, FALSE);
    Tell(L"");
  }

 private:
  static void Tell(const std::wstring& name) {
    const std::lock_guard lock(partialMutex);
    partialName = name;
  }
};

class WindowsPartialFile : public PartialFile {
 public:
  explicit WindowsPartialFile(std::filesystem::path target)
      : target_(std::move(target)),
        partial_(target_.parent_path() / MakePartialName()),
        guard_(partial_.wstring()),
        file_(CreateNew(partial_, target_)) {}
  WindowsPartialFile(const WindowsPartialFile&) = delete;
  WindowsPartialFile& operator=(const WindowsPartialFile&) = delete;
  ~WindowsPartialFile() override {
    file_.Close();
    DeleteFileW(partial_.c_str());  // nothing, once it has been renamed
  }

  void Write(std::string_view bytes) override {
    constexpr std::size_t kMost = std::size_t{1} << 20U;
    while (!bytes.empty()) {
      DWORD count = 0;
      const auto size = static_cast<DWORD>(std::min(bytes.size(), kMost));
      Check(WriteFile(file_.Get(), bytes.data(), size, &count, nullptr) != FALSE);
      bytes.remove_prefix(count);
    }
  }

  void ReplaceTarget() override {
    Check(FlushFileBuffers(file_.Get()) != FALSE);
    file_.Close();
    Check(MoveFileExW(partial_.c_str(), target_.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE);
  }

 private:
  std::filesystem::path target_;
  std::filesystem::path partial_;
  RemovedInTheEnd guard_;
  base::Handle file_;
};

}  // namespace

std::unique_ptr<PartialFile> PartialFile::Create(const std::filesystem::path& target) {
  return std::make_unique<WindowsPartialFile>(target);
}

}  // namespace norv::tool
