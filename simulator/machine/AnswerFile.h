// Reads one entry of "answers" of a machine file.
#pragma once

#include "machine/Answer.h"
#include "machine/JsonNode.h"

namespace norv::simulator {

Answer ReadAnswer(const JsonNode& node);

}  // namespace norv::simulator
