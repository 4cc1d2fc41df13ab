#include "norv/shared/wmi/WMIClient.h"

#include "SystemCodes.h"
#include "norv/platform/Platform.h"

namespace norv::shared::wmi {

WMIClient::WMIClient(const std::wstring& namespacePath)
    : connectCode_(platform::Platform::Current().ConnectWmi(namespacePath, connection_)) {
}

WMIClient::~WMIClient() = default;

long WMIClient::Query(const std::wstring& wql) {
  if (connection_ == nullptr) {
    return connectCode_ != 0 ? connectCode_ : platform::kUnspecifiedFailure;
  }
  return connection_->Query(wql);
}

bool WMIClient::GetNext() {
  return connection_ != nullptr && connection_->Next();
}

long WMIClient::GetValue(const std::wstring& property, std::string& value) {
  return connection_ != nullptr ? connection_->ReadText(property, value) : platform::kUnspecifiedFailure;
}

bool WMIClient::GetUInt32(const std::wstring& property, std::uint32_t& value) {
  return connection_ != nullptr && connection_->ReadNumber(property, value);
}

}  // namespace norv::shared::wmi
