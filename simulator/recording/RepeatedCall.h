// Asks a platform once more for what was recorded.
#pragma once

#include "norv/platform/Platform.h"
#include "recording/Recording.h"

namespace norv::simulator {

// What `platform` answers to the same call.
RecordedCall RepeatedCall(platform::Platform& platform, const RecordedCall& call);

// Whether whoever made the first call could not tell the two apart.
bool AnswersAlike(const RecordedCall& first, const RecordedCall& second);

}  // namespace norv::simulator
