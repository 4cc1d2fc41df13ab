// A connection to a namespace of a simulated machine.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "machine/MachineDescription.h"

namespace norv::simulator {

// A success or failure code of COM; the names are those of wbemcli.h and winerror.h.
inline constexpr std::uint32_t kWbemNotFound = 0x80041002;
inline constexpr std::uint32_t kWbemInvalidNamespace = 0x8004100E;
inline constexpr std::uint32_t kWbemInvalidClass = 0x80041010;
inline constexpr std::uint32_t kWbemInvalidQuery = 0x80041017;
inline constexpr std::uint32_t kDispTypeMismatch = 0x80020005;

// A code as the signed number that it is in an HRESULT, whatever the width of long.
inline long ToHresult(std::uint32_t code) {
  return static_cast<std::int32_t>(code);
}

// The objects that a query found, read one after another.
class FoundObjects {
 public:
  FoundObjects() = default;
  // The rows must outlive this object.
  explicit FoundObjects(std::vector<const Row*> rows) : rows_(std::move(rows)) {}

  // As WmiConnection has them, but for the names of properties, which are UTF-8.
  bool Next();
  long ReadText(const std::string& property, std::string& value) const;
  bool ReadNumber(const std::string& property, std::uint32_t& value) const;

 private:
  const PropertyValue* Find(const std::string& property) const;

  std::vector<const Row*> rows_;
  std::size_t next_ = 0;  // one more than the index of the current row, 0 before the first
};

// `machine` keeps `description` alive for as long as the connection lives.
std::unique_ptr<platform::WmiConnection> ConnectTo(std::shared_ptr<const MachineDescription> machine,
                                                   const NamespaceDescription& description);

}  // namespace norv::simulator
