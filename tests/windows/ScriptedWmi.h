// A WMI of the tests' own: a COM server within this process that answers as a test tells it, under the class id by
// which everyone finds the real one.
#pragma once

#include <wbemidl.h>
#include <windows.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace norv::test {

// What a property holds, or why it cannot be read.
struct ScriptedValue {
  HRESULT code = S_OK;
  CIMTYPE type = CIM_EMPTY;
  std::function<void(VARIANT&)> fill = [](VARIANT&) {};
};

ScriptedValue Text(const wchar_t* text);
ScriptedValue UnsignedWord(std::uint32_t number);  // as WMI hands it over: in a signed variant
ScriptedValue Number(VARTYPE kind, std::int64_t number);
ScriptedValue Real(double number);
ScriptedValue Flag(bool flag);
ScriptedValue Nothing();
ScriptedValue Failing(HRESULT code);

using ScriptedRow = std::map<std::wstring, ScriptedValue>;

struct ScriptedQuery {
  HRESULT code = S_OK;
  std::vector<ScriptedRow> rows{};
  HRESULT end = WBEM_S_FALSE;  // what is answered behind the last row
  bool hangs = false;          // nothing is answered behind the last row, for as long as the client waits
};

struct ScriptedNamespace {
  HRESULT code = S_OK;
  std::map<std::wstring, ScriptedQuery> queries{};
};

// The server. It is found on threads that belong to the apartment of the thread that made it.
class ScriptedWmi {
 public:
  ScriptedWmi();
  ScriptedWmi(const ScriptedWmi&) = delete;
  ScriptedWmi& operator=(const ScriptedWmi&) = delete;
  ~ScriptedWmi();

  // L"\\\\.\\root\\wmi" ...
  std::map<std::wstring, ScriptedNamespace> namespaces;
  bool takesBlankets = false;  // as objects in another process do

  // What the clients did.
  std::vector<std::wstring> connections;
  std::vector<std::wstring> queries;
  std::vector<std::wstring> languages;
  std::vector<LONG> connectionFlags;
  std::vector<LONG> queryFlags;
  std::vector<LONG> waits;  // in milliseconds
  std::vector<DWORD> impersonationLevels;
  int objectsAlive = 0;

 private:
  IClassFactory* factory_;
  DWORD registration_ = 0;
};

}  // namespace norv::test
