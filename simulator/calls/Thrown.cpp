#include "calls/Thrown.h"

#include <algorithm>
#include <array>
#include <limits>
#include <mutex>
#include <new>
#include <set>
#include <stdexcept>
#include <system_error>

#include "norv/simulator/FaultInjector.h"

namespace norv::simulator {

namespace {

using Thrower = void (*)(const Thrown&);

template <typename Exception>
void ThrowWithText(const Thrown& thrown) {
  throw Exception(thrown.text);
}

void ThrowSystemError(const Thrown& thrown) {
  const auto& category = thrown.category == "system" ? std::system_category() : std::generic_category();
  const std::error_code code(static_cast<int>(thrown.number), category);
  if (thrown.text.empty()) {
    throw std::system_error(code);
  }
  // A text ends at its first NUL for whoever is told of it, and what the code says must still be heard.
  throw std::system_error(code, thrown.text.c_str());
}

// A thrown pointer has no owner, so that what it points to has to stay, to the very end of the process.
void ThrowText(const Thrown& thrown) {
  static std::mutex mutex;
  static auto& texts = *new std::set<std::string>;
  const char* text = nullptr;
  {
    const std::lock_guard lock(mutex);
    text = texts.insert(thrown.text).first->c_str();
  }
  throw text;  // NOLINT(misc-throw-by-value-catch-by-reference)
}

struct Kind {
  std::string_view name;
  Thrower throwIt;
};

constexpr std::array kKinds{
    Kind{"runtime_error", ThrowWithText<std::runtime_error>},
    Kind{"logic_error", ThrowWithText<std::logic_error>},
    Kind{"invalid_argument", ThrowWithText<std::invalid_argument>},
    Kind{"length_error", ThrowWithText<std::length_error>},
    Kind{"out_of_range", ThrowWithText<std::out_of_range>},
    Kind{"system_error", ThrowSystemError},
    Kind{"bad_alloc", [](const Thrown&) { throw std::bad_alloc(); }},
    Kind{"int", [](const Thrown& thrown) { throw static_cast<int>(thrown.number); }},
    Kind{"unsigned long", [](const Thrown& thrown) { throw static_cast<unsigned long>(thrown.number); }},
    Kind{"string", ThrowWithText<std::string>},
    Kind{"text", ThrowText},
    Kind{"other", [](const Thrown&) { throw InjectedException(); }},
};

// A system error says its own text, then the one of its code.
Thrown DescribeSystemError(const std::system_error& exception) {
  const std::string ending = exception.code().message();
  std::string text = exception.what();
  if (text.ends_with(ending)) {
    text.resize(text.size() - ending.size());
  }
  if (text.ends_with(": ")) {
    text.resize(text.size() - 2);
  }
  return {"system_error", text, exception.code().value(), exception.code().category().name()};
}

// Each kind after those that derive from it.
Thrown DescribeStandardException(const std::exception_ptr& thrown) {
  try {
    std::rethrow_exception(thrown);
  } catch (const std::bad_alloc&) {
    return {"bad_alloc", "", 0, ""};
  } catch (const std::system_error& exception) {
    return DescribeSystemError(exception);
  } catch (const std::invalid_argument& exception) {
    return {"invalid_argument", exception.what(), 0, ""};
  } catch (const std::length_error& exception) {
    return {"length_error", exception.what(), 0, ""};
  } catch (const std::out_of_range& exception) {
    return {"out_of_range", exception.what(), 0, ""};
  } catch (const std::logic_error& exception) {
    return {"logic_error", exception.what(), 0, ""};
  } catch (const std::exception& exception) {
    return {"runtime_error", exception.what(), 0, ""};
  }
}

}  // namespace

Thrown DescribeThrown(const std::exception_ptr& exception) {
  try {
    std::rethrow_exception(exception);
  } catch (const std::exception&) {
    return DescribeStandardException(exception);
  } catch (int value) {
    return {"int", "", value, ""};
  } catch (unsigned long value) {
    return {"unsigned long", "", static_cast<std::int64_t>(value), ""};
  } catch (const std::string& text) {
    return {"string", text, 0, ""};
  } catch (const char* text) {
    return {"text", text != nullptr ? text : "", 0, ""};
  } catch (...) {
    return {"other", "", 0, ""};
  }
}

void Throw(const Thrown& thrown) {
  const auto* const kind =
      std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& entry) { return entry.name == thrown.kind; });
  if (kind != kKinds.end()) {
    kind->throwIt(thrown);
  }
  throw std::runtime_error(thrown.text);
}

bool IsThrownKind(std::string_view kind) {
  return std::any_of(kKinds.begin(), kKinds.end(), [&](const Kind& entry) { return entry.name == kind; });
}

std::string ThrownKinds() {
  std::string kinds;
  for (const Kind& kind : kKinds) {
    kinds.append(kinds.empty() ? "" : ", ").append(kind.name);
  }
  return kinds;
}

}  // namespace norv::simulator
