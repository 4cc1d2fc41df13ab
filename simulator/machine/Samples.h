// The machine files that are part of the simulator.
#pragma once

#include <span>

namespace norv::simulator {

struct SampleFile {
  const char* name;
  const char* text;
};

// In the order of their names. Written by EmbedSamples.cmake.
std::span<const SampleFile> SampleFiles();

}  // namespace norv::simulator
