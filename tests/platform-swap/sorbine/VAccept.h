#pragma once

#include "rethold/Pointer.h"
#include "sorbine/VObject.h"

#include <string>
#include <vector>

namespace Zamt {

struct VAcceptInfo {
  std::string name;
};

struct VAcception {
  Rethold::WeakPtr<VCreatorBase> creator;
  VAcceptInfo info;
};

struct VAcceptList {
  std::vector<VAcception> entries;

  static Rethold::StrongPtr<VAcceptList> getAcceptors(const Rethold::StrongPtr<VObject>& /*object*/,
                                                      int /*lowest*/, int /*highest*/) {
    return nullptr;
  }
};

} // namespace Zamt
