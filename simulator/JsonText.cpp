#include "JsonText.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <vector>

#include "JsonNode.h"
#include "norv/simulator/SimulatedMachine.h"

namespace norv::simulator {

namespace {

using Json = nlohmann::json;

// "line 3, column 7" of the byte at `position`, counted from 1. Columns count bytes.
std::string LineAndColumn(const std::string& text, std::size_t position) {
  const std::string before = text.substr(0, position > 0 ? std::min(position - 1, text.size()) : 0);
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const std::size_t lineBreak = before.rfind('\n');
  const std::size_t column = lineBreak == std::string::npos ? before.size() + 1 : before.size() - lineBreak;
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

// The parser's own words without its name, its error number and its idea of the place.
std::string Complaint(const Json::exception& failure) {
  std::string words = failure.what();
  for (const char* lead : {"] ", "syntax error while parsing ", "parse error: ", ": "}) {
    const std::size_t found = words.find(lead);
    if (found != std::string::npos) {
      words.erase(0, found + std::string(lead).size());
    }
    if (std::string(lead) == "syntax error while parsing ") {
      return words;
    }
  }
  return words;
}

// Follows the parser through the text and refuses a second key of the same name, which it would take silently.
class KeyWatch {
 public:
  explicit KeyWatch(const std::string& file) : file_(file) {}

  void Meet(Json::parse_event_t event, const Json& parsed) {
    switch (event) {
      case Json::parse_event_t::object_start:
        levels_.push_back({false, 0, {}, {}});
        break;
      case Json::parse_event_t::array_start:
        levels_.push_back({true, 0, {}, {}});
        break;
      case Json::parse_event_t::key:
        MeetKey(parsed.get_ref<const std::string&>());
        break;
      case Json::parse_event_t::object_end:
      case Json::parse_event_t::array_end:
        levels_.pop_back();
        EndValue();
        break;
      case Json::parse_event_t::value:
        EndValue();
        break;
    }
  }

  // Where the parser is.
  std::string Path() const {
    std::string path;
    for (const Level& level : levels_) {
      if (level.isArray) {
        path.append("[").append(std::to_string(level.index)).append("]");
      } else {
        path = MemberPath(path, level.key);
      }
    }
    return path;
  }

 private:
  struct Level {
    bool isArray;
    std::size_t index;
    std::string key;
    std::set<std::string> keys;
  };

  void MeetKey(const std::string& key) {
    levels_.back().key = key;
    if (!levels_.back().keys.insert(key).second) {
      throw MachineFileError(file_ + ": " + Path() + ": this key stands twice, expected it once");
    }
  }

  void EndValue() {
    if (!levels_.empty() && levels_.back().isArray) {
      ++levels_.back().index;
    }
  }

  const std::string& file_;
  std::vector<Level> levels_;
};

}  // namespace

nlohmann::json ParseJson(const std::string& text, const std::string& file) {
  KeyWatch watch(file);
  const auto meet = [&watch](int, Json::parse_event_t event, Json& parsed) {
    watch.Meet(event, parsed);
    return true;
  };
  try {
    return Json::parse(text, meet);
  } catch (const Json::parse_error& failure) {
    throw MachineFileError(file + ": " + LineAndColumn(text, failure.byte) + ": expected JSON, got " +
                           Complaint(failure));
  } catch (const Json::exception& failure) {
    // A number that no type holds: the parser does not say where.
    throw MachineFileError(file + ": " + watch.Path() + ": expected a number that a double holds, got " +
                           Complaint(failure));
  }
}

}  // namespace norv::simulator
