// Gives the answers that a machine file spells out.
#pragma once

#include <memory>
#include <vector>

#include "calls/Interceptor.h"
#include "machine/Answer.h"

namespace norv::simulator {

// Answers calls that there are answers for: the first one the first call of its key and so on, and the last one every
// call after it. It hands on the rest.
std::shared_ptr<Hook> AnsweringHook(const std::vector<Answer>& answers);

}  // namespace norv::simulator
