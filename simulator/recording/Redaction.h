// Takes out of a recording what tells whose machine it is.
//
// A recording is built anew from what a list names: the questions that the library asks, and of their answers numbers,
// codes and the texts that decoding needs. Calls that are not in the list are dropped. A text that is not needed keeps
// its length and its line ends, and each of its other characters becomes an x; serial and CT numbers become others of
// the same shape. What looks like a secret is nowhere searched for: nobody can list all the ways to write a name.
#pragma once

#include <vector>

#include "norv/simulator/MachineRecorder.h"
#include "recording/Recording.h"

namespace norv::simulator {

std::vector<RecordedCall> Redacted(std::vector<RecordedCall> calls, const KeyedHash& hash);

// A sample machine is the same everywhere and keeps its name; any other origin keeps its kind alone.
Origin Redacted(const Origin& origin);

}  // namespace norv::simulator
