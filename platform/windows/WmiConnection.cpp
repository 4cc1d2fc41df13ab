#include "WmiConnection.h"

#include <wbemidl.h>
#include <windows.h>

#include <string>
#include <utility>

#include "ComOwners.h"
#include "ComUse.h"
#include "Remarks.h"
#include "base/Utf8.h"

namespace norv::platform::windows {

namespace {

constexpr auto kNoObject = static_cast<long>(WBEM_E_NOT_FOUND);

// WMI does its work in another process on the caller's behalf, which the caller has to allow on each interface. An
// interface that is served within this process knows no such thing and refuses; it then does without.
void AllowImpersonation(IUnknown* interface_) {
  static_cast<void>(CoSetProxyBlanket(interface_, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                                      RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE));
}

class ComConnection : public WmiConnection {
 public:
  explicit ComConnection(Patience patience) : patience_(patience) {}

  HRESULT Open(const std::wstring& namespacePath) {
    if (FAILED(com_.Result())) {
      return com_.Result();
    }
    ComPointer<IWbemLocator> locator;
    const HRESULT created = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                             reinterpret_cast<void**>(locator.Receive()));
    if (FAILED(created)) {
      return created;
    }
    const HRESULT connected =
        locator->ConnectServer(BasicString(namespacePath).Get(), nullptr, nullptr, nullptr,
                               WBEM_FLAG_CONNECT_USE_MAX_WAIT, nullptr, nullptr, services_.Receive());
    if (FAILED(connected)) {
      return connected;
    }
    if (!services_) {
      return E_POINTER;
    }
    AllowImpersonation(services_.Get());
    return S_OK;
  }

  // WMI answers at once and finds out later whether the query can be run at all, so that the first object, or why there
  // is none, belongs to the query.
  long Query(const std::wstring& wql) override {
    first_.Reset();
    current_.Reset();
    objects_.Reset();
    query_ = wql;
    HRESULT result =
        services_->ExecQuery(BasicString(L"WQL").Get(), BasicString(wql).Get(),
                             WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr, objects_.Receive());
    if (SUCCEEDED(result) && objects_) {
      AllowImpersonation(objects_.Get());
      result = Fetch(first_, patience_.firstObject);
    }
    return FAILED(result) ? result : 0;
  }

  bool Next() override {
    current_.Reset();
    if (first_) {
      current_ = std::move(first_);
    } else if (objects_) {
      Fetch(current_, patience_.nextObject);
    }
    return static_cast<bool>(current_);
  }

  long ReadText(const std::wstring& property, std::string& value) override {
    Variant found;
    HRESULT result = Read(property, found, nullptr);
    if (SUCCEEDED(result)) {
      result = found.ChangeType(VT_BSTR);
    }
    if (FAILED(result)) {
      return result;
    }
    const BSTR text = found.Get().bstrVal;
    value = base::WideToUtf8({text, SysStringLen(text)});
    return 0;
  }

  bool ReadNumber(const std::wstring& property, std::uint32_t& value) override {
    Variant found;
    CIMTYPE type = CIM_EMPTY;
    if (FAILED(Read(property, found, &type))) {
      return false;
    }
    // Automation knows no unsigned number: WMI hands an unsigned word over in a signed one, bit by bit.
    if (type == CIM_UINT32 && found.Get().vt == VT_I4) {
      value = static_cast<std::uint32_t>(found.Get().lVal);
      return true;
    }
    if (FAILED(found.ChangeType(VT_UI4))) {
      return false;
    }
    value = found.Get().ulVal;
    return true;
  }

 private:
  // Takes the next object of the query; null when there is none. A query that has ended, failed or waited too long
  // gives no further one. The code of a failure, also that of the wait; S_OK otherwise, be there an object or not.
  HRESULT Fetch(ComPointer<IWbemClassObject>& object, std::chrono::milliseconds patience) {
    ULONG count = 0;
    const HRESULT result = objects_->Next(static_cast<LONG>(patience.count()), 1, object.Receive(), &count);
    if (result == WBEM_S_NO_ERROR && count == 1 && object) {
      return S_OK;
    }
    object.Reset();
    objects_.Reset();
    if (result == WBEM_S_TIMEDOUT) {
      Tell(WmiTimedOut{patience, query_});
      return static_cast<HRESULT>(WBEM_E_TIMED_OUT);
    }
    return FAILED(result) ? result : S_OK;
  }

  HRESULT Read(const std::wstring& property, Variant& value, CIMTYPE* type) const {
    return current_ ? current_->Get(property.c_str(), 0, value.Receive(), type, nullptr) : kNoObject;
  }

  ComUse com_;  // outlives every interface below
  ComPointer<IWbemServices> services_;
  ComPointer<IEnumWbemClassObject> objects_;  // null when the query has no further one
  ComPointer<IWbemClassObject> first_;        // fetched with the query and not moved to yet
  ComPointer<IWbemClassObject> current_;
  std::wstring query_;
  Patience patience_;
};

}  // namespace

long ConnectWmi(const std::wstring& namespacePath, Patience patience, std::unique_ptr<WmiConnection>& connection) {
  auto opened = std::make_unique<ComConnection>(patience);
  const HRESULT result = opened->Open(namespacePath);
  if (FAILED(result)) {
    return result;
  }
  connection = std::move(opened);
  return 0;
}

}  // namespace norv::platform::windows
