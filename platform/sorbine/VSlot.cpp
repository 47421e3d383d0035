#include "sorbine/VSlot.h"

#include "sorbine/VGraph.h"
#include "sorbine/VObject.h"

#include <algorithm>
#include <utility>

namespace Zamt {

VSlot::VSlot(std::string name, std::string help, Rethold::StrongPtr<VParameter> parameter, std::string member)
    : name_(std::move(name)),
      help_(std::move(help)),
      member_(std::move(member)),
      own_(std::move(parameter)),
      parameter_(own_) {}

VSlot::~VSlot() { stopReading(); }

Rethold::StrongPtr<VValueBase> VSlot::value() const {
  return parameter_ ? parameter_->find(member_) : nullptr;
}

Rethold::TypeId VSlot::type() const {
  const auto held = value();
  return held ? held->type() : Rethold::typeOf<void>();
}

bool VSlot::changed() const {
  const auto object = owner();
  if (!object || object->computedAt_ == 0) return true;
  if (attachedAt_ > object->computedAt_) return true;
  const auto held = value();
  return held && std::max(held->age(), parameter_->value()->age()) > object->computedAt_;
}

void VSlot::attach(const Rethold::StrongPtr<VParameter>& parameter) {
  if (parameter != parameter_) share(parameter);
}

void VSlot::detach() {
  if (fed()) share(own_);
}

void VSlot::share(const Rethold::StrongPtr<VParameter>& parameter) {
  stopReading();
  parameter_ = parameter;
  startReading();
  attachedAt_ = VGraph::get().tick();
  if (const auto object = owner()) VGraph::get().schedule(*object);
}

void VSlot::startReading() {
  if (!parameter_) return;
  reading_ = ++parameter_->lastUser_;
  parameter_->users_.emplace_hint(parameter_->users_.end(), reading_, weak_from_this());
}

void VSlot::stopReading() {
  if (reading_ != 0) parameter_->users_.erase(reading_);
  reading_ = 0;
}

} // namespace Zamt
