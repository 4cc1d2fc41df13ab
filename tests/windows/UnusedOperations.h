// WMI's interfaces with everything left out that no query needs: each other operation answers that it is not there.
#pragma once

#include <wbemidl.h>
#include <windows.h>

namespace norv::test {

class ServicesWithoutOperations : public IWbemServices {
 public:
  HRESULT STDMETHODCALLTYPE OpenNamespace(BSTR, LONG, IWbemContext*, IWbemServices**, IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetObject(BSTR, LONG, IWbemContext*, IWbemClassObject**, IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetObjectAsync(BSTR, LONG, IWbemContext*, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*, IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteClass(BSTR, LONG, IWbemContext*, IWbemCallResult**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DeleteClassAsync(BSTR, LONG, IWbemContext*, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CreateClassEnum(BSTR, LONG, IWbemContext*, IEnumWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*, IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteInstance(BSTR, LONG, IWbemContext*, IWbemCallResult**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateInstanceEnum(BSTR, LONG, IWbemContext*, IEnumWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecQueryAsync(BSTR, BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecNotificationQuery(BSTR, BSTR, LONG, IWbemContext*, IEnumWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(BSTR, BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecMethod(BSTR, BSTR, LONG, IWbemContext*, IWbemClassObject*, IWbemClassObject**,
                                       IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecMethodAsync(BSTR, BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                            IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
};

class EnumeratorWithoutOperations : public IEnumWbemClassObject {
 public:
  HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE NextAsync(ULONG, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Skip(LONG, ULONG) override { return E_NOTIMPL; }
};

class ObjectWithoutOperations : public IWbemClassObject {
 public:
  HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Put(LPCWSTR, LONG, VARIANT*, CIMTYPE) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR, LONG, VARIANT*, SAFEARRAY**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Next(LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE EndEnumeration() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetObjectText(LONG, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SpawnInstance(LONG, IWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CompareTo(LONG, IWbemClassObject*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR, LONG, IWbemClassObject**, IWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*, IWbemClassObject*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE NextMethod(LONG, BSTR*, IWbemClassObject**, IWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR, BSTR*) override { return E_NOTIMPL; }
};

}  // namespace norv::test
