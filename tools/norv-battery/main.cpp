#include "CommandLine.h"
#include "output/BinaryStreams.h"

int main(int argc, char** argv) {
  norv::tool::FillMissingStreams();
  return norv::tool::RunCommandLine(argc, argv);
}
