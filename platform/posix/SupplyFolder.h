// The power supply class as a folder with a folder of attribute files for each supply.
#pragma once

#include <string>
#include <vector>

#include "FileDescriptor.h"
#include "SupplyClass.h"

namespace norv::platform::posix {

// The running system's class, or a copy of another machine's. Every call reads anew.
//
// In the kernel's own class each supply is a link to its device. In a copy, which anybody may have made, a link is
// followed where it leads to a place within the copied folder; one that leads out of it is no supply. A folder with
// more entries than any machine has supplies is not a copy of the class, and has none.
class SupplyFolder : public SupplyClass {
 public:
  explicit SupplyFolder(const std::string& path);

  std::vector<std::string> Names() const override;
  AttributeReader Open(const std::string& name) const override;

 private:
  bool IsKernels() const;
  int OpenSupply(const std::string& name) const;

  std::string path_;
  FileDescriptor folder_;
};

}  // namespace norv::platform::posix
