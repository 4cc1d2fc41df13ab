#include "play/SimulatedWmi.h"

#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "base/Utf8.h"
#include "machine/Text.h"
#include "play/WmiQuery.h"

namespace norv::simulator {

namespace {

template <typename... Kinds>
struct Overloaded : Kinds... {
  using Kinds::operator()...;
};
template <typename... Kinds>
Overloaded(Kinds...) -> Overloaded<Kinds...>;

std::string RealText(double number) {
  char text[64];
  const auto result = std::to_chars(text, text + sizeof text, number);
  return {text, result.ptr};
}

// The value as text, as a conversion of the variant gives it; nothing for a value that has none.
std::optional<std::string> AsText(const PropertyValue& value) {
  return std::visit(Overloaded{
                        [](std::monostate) -> std::optional<std::string> { return std::nullopt; },
                        [](const FailedRead&) -> std::optional<std::string> { return std::nullopt; },
                        [](const PropertyReads& reads) -> std::optional<std::string> {
                          const bool isRead = reads.text.has_value() && reads.text->code == 0 && !reads.text->thrown;
                          return isRead ? std::optional(reads.text->value) : std::nullopt;
                        },
                        [](bool flag) -> std::optional<std::string> { return flag ? "True" : "False"; },
                        [](double number) -> std::optional<std::string> { return RealText(number); },
                        [](const std::string& text) -> std::optional<std::string> { return text; },
                        [](auto number) -> std::optional<std::string> { return std::to_string(number); },
                    },
                    value);
}

// A half goes to the even neighbour.
std::optional<std::uint32_t> RoundedNumber(double number) {
  const double rounded = std::nearbyint(number);
  const bool fits = rounded >= 0 && rounded <= 4294967295.0;
  return fits ? std::optional(static_cast<std::uint32_t>(rounded)) : std::nullopt;
}

std::optional<std::uint32_t> NumberInText(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t");
  const std::size_t end = text.find_last_not_of(" \t");
  if (start == std::string_view::npos) {
    return std::nullopt;
  }
  text = text.substr(start, end - start + 1);
  const bool plus = text.front() == '+';
  text.remove_prefix(plus ? 1 : 0);
  double number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isNumber =
      result.ec == std::errc() && result.ptr == text.data() + text.size() && !(plus && text.front() == '-');
  return isNumber ? RoundedNumber(number) : std::nullopt;
}

// The value as an unsigned 32-bit number, as a conversion of the variant gives it. True is a word of ones in a variant.
std::optional<std::uint32_t> AsNumber(const PropertyValue& value) {
  using Number = std::optional<std::uint32_t>;
  return std::visit(Overloaded{
                        [](std::monostate) -> Number { return std::nullopt; },
                        [](const FailedRead&) -> Number { return std::nullopt; },
                        [](const PropertyReads&) -> Number { return std::nullopt; },
                        [](bool flag) -> Number { return flag ? 0xFFFFFFFFU : 0U; },
                        [](const std::string& text) -> Number { return NumberInText(text); },
                        [](auto number) -> Number { return RoundedNumber(static_cast<double>(number)); },
                    },
                    value);
}

bool Passes(const Row& row, const std::optional<WmiQuery::Filter>& filter) {
  if (!filter.has_value()) {
    return true;
  }
  const auto property = row.find(filter->property);
  const std::optional<std::string> text = property != row.end() ? AsText(property->second) : std::nullopt;
  return text.has_value() && Folded(*text) == Folded(filter->value);
}

class SimulatedConnection : public platform::WmiConnection {
 public:
  SimulatedConnection(std::shared_ptr<const MachineDescription> machine, const NamespaceDescription& description)
      : machine_(std::move(machine)), description_(description) {}

  long Query(const std::wstring& wql) override {
    objects_ = {};
    const std::optional<WmiQuery> query = ParseWmiQuery(base::WideToUtf8(wql));
    if (!query.has_value()) {
      return ToHresult(kWbemInvalidQuery);
    }
    const auto wmiClass = description_.classes.find(query->wmiClass);
    if (wmiClass == description_.classes.end()) {
      return ToHresult(kWbemInvalidClass);
    }
    if (wmiClass->second.queryCode != 0) {
      return wmiClass->second.queryCode;
    }
    std::vector<const Row*> rows;
    for (const Row& row : wmiClass->second.rows) {
      if (Passes(row, query->filter)) {
        rows.push_back(&row);
      }
    }
    objects_ = FoundObjects(std::move(rows));
    return 0;
  }

  bool Next() override { return objects_.Next(); }

  long ReadText(const std::wstring& property, std::string& value) override {
    return objects_.ReadText(base::WideToUtf8(property), value);
  }

  bool ReadNumber(const std::wstring& property, std::uint32_t& value) override {
    return objects_.ReadNumber(base::WideToUtf8(property), value);
  }

 private:
  std::shared_ptr<const MachineDescription> machine_;
  const NamespaceDescription& description_;
  FoundObjects objects_;
};

// One of the two ways of reading a property that was recorded, which may be the other one alone.
long ReadAsRecorded(const PropertyReads& reads, std::string& value) {
  if (!reads.text.has_value()) {
    return ToHresult(kDispTypeMismatch);
  }
  if (reads.text->thrown.has_value()) {
    Throw(*reads.text->thrown);
  }
  value = reads.text->code == 0 ? reads.text->value : value;
  return reads.text->code;
}

bool ReadAsRecorded(const PropertyReads& reads, std::uint32_t& value) {
  if (!reads.number.has_value()) {
    return false;
  }
  if (reads.number->thrown.has_value()) {
    Throw(*reads.number->thrown);
  }
  value = reads.number->value.value_or(value);
  return reads.number->value.has_value();
}

}  // namespace

bool FoundObjects::Next() {
  if (next_ <= rows_.size()) {
    ++next_;
  }
  return next_ <= rows_.size();
}

long FoundObjects::ReadText(const std::string& property, std::string& value) const {
  const PropertyValue* const found = Find(property);
  if (found == nullptr) {
    return ToHresult(kWbemNotFound);
  }
  if (const auto* const failed = std::get_if<FailedRead>(found)) {
    return failed->code;
  }
  if (const auto* const reads = std::get_if<PropertyReads>(found)) {
    return ReadAsRecorded(*reads, value);
  }
  const std::optional<std::string> text = AsText(*found);
  value = text.value_or(value);
  return text.has_value() ? 0 : ToHresult(kDispTypeMismatch);
}

bool FoundObjects::ReadNumber(const std::string& property, std::uint32_t& value) const {
  const PropertyValue* const found = Find(property);
  if (found == nullptr) {
    return false;
  }
  if (const auto* const reads = std::get_if<PropertyReads>(found)) {
    return ReadAsRecorded(*reads, value);
  }
  const std::optional<std::uint32_t> number = AsNumber(*found);
  value = number.value_or(value);
  return number.has_value();
}

// Null where there is no current row or it has no such property.
const PropertyValue* FoundObjects::Find(const std::string& property) const {
  if (next_ == 0 || next_ > rows_.size()) {
    return nullptr;
  }
  const Row& row = *rows_[next_ - 1];
  const auto found = row.find(Folded(property));
  return found != row.end() ? &found->second : nullptr;
}

std::unique_ptr<platform::WmiConnection> ConnectTo(std::shared_ptr<const MachineDescription> machine,
                                                   const NamespaceDescription& description) {
  return std::make_unique<SimulatedConnection>(std::move(machine), description);
}

}  // namespace norv::simulator
