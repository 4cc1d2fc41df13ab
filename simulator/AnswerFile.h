// Reads one entry of "answers" of a machine file.
#pragma once

#include "Answer.h"
#include "JsonNode.h"

namespace norv::simulator {

Answer ReadAnswer(const JsonNode& node);

// "throws" and what belongs to it.
Thrown ReadThrown(const JsonNode& node);

}  // namespace norv::simulator
