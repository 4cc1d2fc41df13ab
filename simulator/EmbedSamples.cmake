# Writes a C++ source that holds machine files: cmake -D FILES=a.json,b.json -D OUTPUT=Samples.cpp -P EmbedSamples.cmake
string(REPLACE "," ";" files "${FILES}")
list(SORT files)
set(entries "")
foreach(file IN LISTS files)
  get_filename_component(name ${file} NAME_WE)
  file(READ ${file} text)
  string(APPEND entries "    {\"${name}\", R\"machine(${text})machine\"},\n")
endforeach()
file(WRITE ${OUTPUT} "// Made from the files in simulator/machines when the simulator is built.
#include \"Samples.h\"

namespace norv::simulator {

namespace {

constexpr SampleFile kSamples[] = {
${entries}};

}  // namespace

std::span<const SampleFile> SampleFiles() { return kSamples; }

}  // namespace norv::simulator
")
