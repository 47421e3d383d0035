#include "sorbine/VSlotContainer.h"

namespace Zamt {

VSlotContainer::~VSlotContainer() = default;

Rethold::StrongPtr<VSlot> VSlotContainer::getSlot(const std::string& name, int& index) const {
  index = -1;
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    if (inputs_[i]->name() != name) continue;
    index = static_cast<int>(i);
    return inputs_[i];
  }
  return nullptr;
}

Rethold::StrongPtr<VSlot> VSlotContainer::getSlot(const std::string& name) const {
  int index = -1;
  return getSlot(name, index);
}

void VSlotContainer::iterate_inputs(
    const std::function<bool(const Rethold::StrongPtr<VSlot>& slot, int index)>& callback) const {
  for (std::size_t i = 0; i < inputs_.size(); ++i)
    if (!callback(inputs_[i], static_cast<int>(i))) return;
}

void VSlotContainer::initialize() {}

void VSlotContainer::addInput(const Rethold::StrongPtr<VSlot>& slot) {
  slot->startReading();
  inputs_.push_back(slot);
  if (inGraph()) added();
}

void VSlotContainer::addOutput(const Rethold::StrongPtr<VSlot>& slot) {
  outputs_.push_back(slot);
  if (inGraph()) added();
}

} // namespace Zamt
