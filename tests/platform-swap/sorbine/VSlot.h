#pragma once

#include "rethold/Pointer.h"
#include "sorbine/VParameter.h"

#include <string>

namespace Zamt {

class VSlot {
public:
  std::string name() const { return {}; }
  std::string help() const { return {}; }
  std::string member() const { return {}; }
  Rethold::StrongPtr<VObject> owner() const { return nullptr; }
  Rethold::StrongPtr<VParameter> parameter() const { return nullptr; }
};

} // namespace Zamt
