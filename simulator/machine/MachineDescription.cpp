#include "machine/MachineDescription.h"

#include <algorithm>

#include "machine/Text.h"

namespace norv::simulator {

std::string NamespaceKey(const std::string& path) {
  std::string key = Folded(path);
  std::replace(key.begin(), key.end(), '/', '\\');
  const std::string thisMachine = "\\\\.\\";
  return key.compare(0, thisMachine.size(), thisMachine) == 0 ? key.substr(thisMachine.size()) : key;
}

}  // namespace norv::simulator
