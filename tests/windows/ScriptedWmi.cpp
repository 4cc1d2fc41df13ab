#include "ScriptedWmi.h"

#include <gtest/gtest.h>

#include "UnusedOperations.h"

namespace norv::test {

namespace {

template <typename Interface>
const IID& InterfaceId();
template <>
const IID& InterfaceId<ObjectWithoutOperations>() {
  return IID_IWbemClassObject;
}
template <>
const IID& InterfaceId<EnumeratorWithoutOperations>() {
  return IID_IEnumWbemClassObject;
}
template <>
const IID& InterfaceId<ServicesWithoutOperations>() {
  return IID_IWbemServices;
}
template <>
const IID& InterfaceId<IWbemLocator>() {
  return IID_IWbemLocator;
}
template <>
const IID& InterfaceId<IClassFactory>() {
  return IID_IClassFactory;
}

// Reference counting, and the one interface beside IUnknown.
template <typename Interface>
class Counted : public Interface {
 public:
  explicit Counted(ScriptedWmi& wmi) : wmi_(wmi) { ++wmi_.objectsAlive; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** found) override {
    *found = Find(id);
    if (*found == nullptr) {
      return E_NOINTERFACE;
    }
    this->AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++count_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --count_;
    if (left == 0) {
      delete this;
    }
    return left;
  }

 protected:
  virtual ~Counted() { --wmi_.objectsAlive; }

  virtual void* Find(REFIID id) {
    return id == IID_IUnknown || id == InterfaceId<Interface>() ? static_cast<Interface*>(this) : nullptr;
  }

  ScriptedWmi& wmi_;

 private:
  ULONG count_ = 1;
};

// The side of a proxy that sets how calls through it are made.
class Blanket : public IClientSecurity {
 public:
  Blanket(IUnknown& owner, ScriptedWmi& wmi) : owner_(owner), wmi_(wmi) {}
  virtual ~Blanket() = default;
  Blanket(const Blanket&) = delete;
  Blanket& operator=(const Blanket&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** found) override {
    return owner_.QueryInterface(id, found);
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return owner_.AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return owner_.Release(); }

  HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown*, DWORD*, DWORD*, OLECHAR**, DWORD*, DWORD*, void**,
                                         DWORD*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD impersonation, void*,
                                       DWORD) override {
    wmi_.impersonationLevels.push_back(impersonation);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown*, IUnknown**) override { return E_NOTIMPL; }

 private:
  IUnknown& owner_;
  ScriptedWmi& wmi_;
};

// What a client may set a blanket on.
template <typename Interface>
class Remote : public Counted<Interface> {
 public:
  explicit Remote(ScriptedWmi& wmi) : Counted<Interface>(wmi), blanket_(*this, wmi) {}

 protected:
  void* Find(REFIID id) override {
    if (id == IID_IClientSecurity && this->wmi_.takesBlankets) {
      return static_cast<IClientSecurity*>(&blanket_);
    }
    return Counted<Interface>::Find(id);
  }

 private:
  Blanket blanket_;
};

class Object : public Counted<ObjectWithoutOperations> {
 public:
  Object(ScriptedWmi& wmi, const ScriptedRow& row) : Counted(wmi), row_(row) {}

  HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG, VARIANT* value, CIMTYPE* type, LONG*) override {
    const auto found = row_.find(name);
    if (found == row_.end()) {
      return static_cast<HRESULT>(WBEM_E_NOT_FOUND);
    }
    if (FAILED(found->second.code)) {
      return found->second.code;
    }
    VariantInit(value);
    found->second.fill(*value);
    if (type != nullptr) {
      *type = found->second.type;
    }
    return S_OK;
  }

 private:
  const ScriptedRow& row_;
};

class Enumerator : public Remote<EnumeratorWithoutOperations> {
 public:
  Enumerator(ScriptedWmi& wmi, const ScriptedQuery& query) : Remote(wmi), query_(query) {}

  HRESULT STDMETHODCALLTYPE Next(LONG wait, ULONG count, IWbemClassObject** objects, ULONG* returned) override {
    wmi_.waits.push_back(wait);
    *returned = 0;
    if (count == 1 && next_ < query_.rows.size()) {
      objects[0] = new Object(wmi_, query_.rows[next_++]);
      *returned = 1;
      return WBEM_S_NO_ERROR;
    }
    if (query_.hangs) {
      Sleep(static_cast<DWORD>(wait));
      return WBEM_S_TIMEDOUT;
    }
    return query_.end;
  }

 private:
  const ScriptedQuery& query_;
  std::size_t next_ = 0;
};

class Services : public Remote<ServicesWithoutOperations> {
 public:
  Services(ScriptedWmi& wmi, const ScriptedNamespace& description) : Remote(wmi), description_(description) {}

  HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR text, LONG flags, IWbemContext*,
                                      IEnumWbemClassObject** found) override {
    wmi_.languages.emplace_back(language);
    wmi_.queries.emplace_back(text, SysStringLen(text));
    wmi_.queryFlags.push_back(flags);
    const auto query = description_.queries.find(text);
    if (query == description_.queries.end()) {
      return static_cast<HRESULT>(WBEM_E_INVALID_CLASS);
    }
    if (FAILED(query->second.code)) {
      return query->second.code;
    }
    *found = new Enumerator(wmi_, query->second);
    return query->second.code;
  }

 private:
  const ScriptedNamespace& description_;
};

class Locator : public Counted<IWbemLocator> {
 public:
  using Counted::Counted;

  HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR path, const BSTR user, const BSTR password, const BSTR, LONG flags,
                                          const BSTR, IWbemContext*, IWbemServices** services) override {
    EXPECT_EQ(user, nullptr);
    EXPECT_EQ(password, nullptr);
    wmi_.connections.emplace_back(path, SysStringLen(path));
    wmi_.connectionFlags.push_back(flags);
    const auto found = wmi_.namespaces.find(path);
    if (found == wmi_.namespaces.end()) {
      return static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE);
    }
    if (FAILED(found->second.code)) {
      return found->second.code;
    }
    *services = new Services(wmi_, found->second);
    return S_OK;
  }
};

class Factory : public Counted<IClassFactory> {
 public:
  using Counted::Counted;

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** made) override {
    if (outer != nullptr) {
      return CLASS_E_NOAGGREGATION;
    }
    auto* const locator = new Locator(wmi_);
    const HRESULT result = locator->QueryInterface(id, made);
    locator->Release();
    return result;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

}  // namespace

ScriptedValue Text(const wchar_t* text) {
  return {S_OK, CIM_STRING, [text](VARIANT& value) {
            value.vt = VT_BSTR;
            value.bstrVal = SysAllocString(text);
          }};
}

ScriptedValue UnsignedWord(std::uint32_t number) {
  return {S_OK, CIM_UINT32, [number](VARIANT& value) {
            value.vt = VT_I4;
            value.lVal = static_cast<LONG>(number);
          }};
}

ScriptedValue Number(VARTYPE kind, std::int64_t number) {
  return {S_OK, kind, [kind, number](VARIANT& value) {  // a kind of number has the same code in WMI
            value.llVal = number;
            value.vt = kind;
          }};
}

ScriptedValue Real(double number) {
  return {S_OK, CIM_REAL64, [number](VARIANT& value) {
            value.vt = VT_R8;
            value.dblVal = number;
          }};
}

ScriptedValue Flag(bool flag) {
  return {S_OK, CIM_BOOLEAN, [flag](VARIANT& value) {
            value.vt = VT_BOOL;
            value.boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
          }};
}

ScriptedValue Nothing() {
  return {S_OK, CIM_STRING, [](VARIANT& value) { value.vt = VT_NULL; }};
}

ScriptedValue Failing(HRESULT code) {
  return {code};
}

ScriptedWmi::ScriptedWmi() : factory_(new Factory(*this)) {
  EXPECT_EQ(
      CoRegisterClassObject(CLSID_WbemLocator, factory_, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration_),
      S_OK);
}

ScriptedWmi::~ScriptedWmi() {
  CoRevokeClassObject(registration_);
  factory_->Release();
  EXPECT_EQ(objectsAlive, 0) << "a client kept an interface";
}

}  // namespace norv::test
