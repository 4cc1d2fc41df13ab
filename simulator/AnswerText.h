// Writes recorded calls in the words of a machine file.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "Recording.h"

namespace norv::simulator {

// One entry of "answers".
nlohmann::ordered_json AnswerJson(const RecordedCall& call);

// One object of a class or an answer.
nlohmann::ordered_json RowJson(const RecordedRow& row);

// A status or a code, "0x80070005".
std::string CodeText(std::int64_t code);

}  // namespace norv::simulator
