#pragma once

#include "rethold/Intercube.h"
#include "rethold/Pointer.h"
#include "sorbine/VManagedObject.h"
#include "sorbine/VOutputIterator.h"

#include <functional>
#include <string>

namespace Zamt {

class VCreatorBase;
struct VAcception;

class VObject : public VManagedObject {
public:
  Rethold::StrongPtr<VCreatorBase> creator() const { return nullptr; }
  Rethold::StrongPtr<VSlot> getSlot(const std::string& /*name*/, int& /*index*/) const { return nullptr; }
  void iterate_inputs(const std::function<bool(const Rethold::StrongPtr<VSlot>&, int)>& /*callback*/) const {}
  void iterate_outputs(VOutputIterator& /*iterator*/) const {}
  Rethold::StrongPtr<VObject> createChild(const VAcception& /*acception*/,
                                          const Rethold::Intercube& /*context*/) {
    return nullptr;
  }
  void initialize() {}
  void remove() {}
};

} // namespace Zamt
