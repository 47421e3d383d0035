#include "sorbine/VObject.h"

#include "sorbine/VAccept.h"
#include "sorbine/VCreator.h"
#include "sorbine/VGraph.h"

#include <utility>
#include <vector>

namespace Zamt {
namespace {

// True for a pointer that has never observed anything, unlike one whose object is gone.
bool wasNeverSet(const Rethold::WeakPtr<VObject>& pointer) {
  const Rethold::WeakPtr<VObject> never;
  return !pointer.owner_before(never) && !never.owner_before(pointer);
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

Rethold::TypeId typeBehind(const VSlot& slot) {
  const auto& parameter = slot.parameter();
  return parameter && parameter->value() ? parameter->value()->type() : Rethold::typeOf<void>();
}

using Slots = std::vector<Rethold::StrongPtr<VSlot>>;

Rethold::StrongPtr<VSlot> slotNamed(const Slots& slots, const std::string& name) {
  for (const auto& slot : slots)
    if (slot->name() == name) return slot;
  return nullptr;
}

Rethold::StrongPtr<VSlot> outputFor(const VSlot& input, const Slots& outputs) {
  const auto fits = [&input](const VSlot& output) { return typeBehind(output) == typeBehind(input); };
  const auto namesake = slotNamed(outputs, input.name());
  if (namesake && fits(*namesake)) return namesake;
  for (const auto& output : outputs)
    if (fits(*output)) return output;
  return nullptr;
}

} // namespace

VOutputIterator::~VOutputIterator() = default;

VObject::VObject() = default;

VObject::~VObject() = default;

void VObject::iterate_outputs(VOutputIterator& iterator) const {
  for (const auto& slot : outputs())
    if (!iterator.apply(slot->type(), slot)) return;
}

bool VObject::attach(const std::string& slotName, VObject& source, const std::string& sourceSlot,
                     std::string& reason) {
  const auto slot = getSlot(slotName);
  if (!slot || !slot->parameter()) {
    reason = quoted(name()) + " has no input called " + quoted(slotName) + ".";
    return false;
  }
  const auto output =
      sourceSlot.empty() ? outputFor(*slot, source.outputs()) : slotNamed(source.outputs(), sourceSlot);
  if (!output && !sourceSlot.empty()) {
    reason = quoted(source.name()) + " has no output called " + quoted(sourceSlot) + ".";
    return false;
  }
  if (!output || !output->parameter() || typeBehind(*output) != typeBehind(*slot)) {
    const std::string wanted =
        quoted(name() + "." + slotName) + " reads, which is " + Rethold::Typename(typeBehind(*slot)) + ".";
    reason = sourceSlot.empty()
                 ? quoted(source.name()) + " publishes nothing that " + wanted
                 : quoted(source.name() + "." + sourceSlot) + " does not publish what " + wanted;
    return false;
  }
  if (!accepts(*slot, *output, reason)) return false;
  slot->attach(output->parameter());
  return true;
}

Rethold::StrongPtr<VObject> VObject::createChild(const VAcception& acception,
                                                 const Rethold::Intercube& context) {
  const auto creator = acception.creator.lock();
  auto child = creator ? creator->create({}, context) : nullptr;
  if (!child) return nullptr;
  std::string reason;
  if (child->attach(acception.info.slot, *this, {}, reason)) return child;
  child->remove();
  return nullptr;
}

bool VObject::accepts(const VSlot& /*input*/, const VSlot& /*output*/, std::string& /*reason*/) const {
  return true;
}

void VObject::initialize() {
  VSlotContainer::initialize();
  schedule();
}

void VObject::remove() {
  if (!inGraph()) return;
  const auto self = shared_from_this();
  VSlotContainer::remove();
  for (const auto& slot : inputs()) slot->detach();
  for (const auto& slot : outputs())
    if (slot->parameter() && slot->parameter()->source() == self) slot->parameter()->detachUsers();
}

bool VObject::isA(Rethold::TypeId type) const {
  return type == Rethold::typeOf<VObject>() || VSlotContainer::isA(type);
}

void VObject::compute() {}

void VObject::schedule() { VGraph::get().schedule(*this); }

Rethold::StrongPtr<VSlot> VObject::action(const std::string& name, const std::string& help,
                                          std::function<void()> callback) {
  auto value = std::make_shared<VValue<Rethold::StrongPtr<VAction>>>();
  auto slot = std::make_shared<VSlot>(name, help, std::make_shared<VParameter>(value));
  // The owner is held while the callback runs, which may well remove it.
  value->held = std::make_shared<VAction>(
      [weakSlot = Rethold::WeakPtr<VSlot>(slot), run = std::move(callback)](const auto&, const auto&) {
        const auto fired = weakSlot.lock();
        const auto owner = fired ? fired->owner() : nullptr;
        if (owner && run) run();
      });
  addInput(slot);
  return slot;
}

Rethold::TypeId VObject::kind() const { return Rethold::typeOf<VObject>(); }

void VObject::added() {
  const auto self = std::static_pointer_cast<VObject>(shared_from_this());
  for (const auto* slots : {&inputs(), &outputs()}) {
    for (const auto& slot : *slots) {
      slot->owner_ = self;
      // A parameter that comes from elsewhere keeps its source.
      if (slot->own_ && wasNeverSet(slot->own_->source_)) slot->own_->source_ = self;
    }
  }
}

void VObject::run() {
  const std::uint64_t begin = VGraph::get().tick();
  compute();
  computedAt_ = begin;
}

} // namespace Zamt
