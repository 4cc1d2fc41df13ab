// A WMI query client.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "battery/Export.h"

namespace norv::platform {
class WmiConnection;
}

namespace norv::shared::wmi {

// Connects to one WMI namespace and walks through the objects that a query finds there. Calls block. One thread at a
// time uses a client.
class NORV_BATTERY_API WMIClient {
 public:
  // Connects to a namespace such as L"\\\\.\\root\\cimv2". Does not fail: a connection that could not be made is
  // reported by Query.
  explicit WMIClient(const std::wstring& namespacePath);
  WMIClient(const WMIClient&) = delete;
  WMIClient& operator=(const WMIClient&) = delete;
  ~WMIClient();

  // Runs a WQL query; the objects of an earlier one are gone. Returns 0, or the code of the failure (HRESULT form),
  // also that of the connection.
  long Query(const std::wstring& wql);

  // Moves to the next object of the query. False when none is left, or no query has succeeded.
  bool GetNext();

  // Reads a property of the current object as UTF-8 text. Returns 0, or the code of the failure with `value` unchanged.
  long GetValue(const std::wstring& property, std::string& value);

  // Reads a property of the current object as a number: an unsigned 32-bit value as it is, any other by conversion.
  // False, with `value` unchanged, when the property cannot be read or converted.
  bool GetUInt32(const std::wstring& property, std::uint32_t& value);

 private:
  std::unique_ptr<platform::WmiConnection> connection_;  // null when the connection failed
  long connectCode_;
};

}  // namespace norv::shared::wmi
