#include "sorbine/VParameter.h"

#include "sorbine/VGraph.h"
#include "sorbine/VObject.h"
#include "sorbine/VSlot.h"

#include <utility>

namespace Zamt {

VParameter::VParameter(Rethold::StrongPtr<VValueBase> value, Access access)
    : value_(std::move(value)), access_(access) {}

VParameter::~VParameter() = default;

Rethold::StrongPtr<VValueBase> VParameter::find(const std::string& member) const {
  return value_ && !member.empty() ? value_->component(member) : value_;
}

bool VParameter::setValueFromText(const std::string& text, const Rethold::StrongPtr<ValuePool>& /*pool*/,
                                  const std::string& member) {
  const auto target = find(member);
  if (access_ == Access::Published || !target || !target->setFromText(text)) return false;
  changed();
  return true;
}

std::string VParameter::getValueAsText(const Rethold::StrongPtr<ValuePool>& /*pool*/,
                                       const std::string& member, bool /*unused*/) const {
  const auto target = find(member);
  return target ? target->asText() : std::string();
}

void VParameter::iterateUsers(const UserCallback& callback) const {
  // Found afresh after each call, since the callback may attach and detach.
  for (auto next = users_.begin(); next != users_.end();) {
    const std::uint64_t place = next->first;
    const auto slot = next->second.lock();
    const auto reader = slot ? slot->owner() : nullptr;
    if (reader && !callback(reader, slot->name())) return;
    next = users_.upper_bound(place);
  }
}

void VParameter::detachUsers() {
  // Each reader takes itself out of the list; one whose own parameter this is stays and is passed over.
  for (auto next = users_.begin(); next != users_.end();) {
    const std::uint64_t place = next->first;
    if (const auto slot = next->second.lock()) slot->detach();
    next = users_.upper_bound(place);
  }
}

void VParameter::changed() {
  if (value_) value_->touch();
  iterateUsers([](const Rethold::StrongPtr<VObject>& reader, const std::string& /*slotName*/) {
    VGraph::get().schedule(*reader);
    return true;
  });
}

} // namespace Zamt
