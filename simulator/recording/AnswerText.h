// Writes recorded calls in the words of a machine file.
#pragma once

#include "json/Value.h"
#include "recording/Recording.h"

namespace norv::simulator {

// One entry of "answers".
json::Object AnswerJson(const RecordedCall& call);

// One object of a class or an answer.
json::Object RowJson(const RecordedRow& row);

}  // namespace norv::simulator
