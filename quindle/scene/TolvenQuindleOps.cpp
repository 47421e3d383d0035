#include "quindle/scene/TolvenQuindleOps.h"

#include "quindle/core/Guarded.h"
#include "quindle/runtime/QuindleSceneWords.h"

#include "cadmer/VAction.h"
#include "rethold/Intercube.h"
#include "rethold/Typename.h"
#include "sorbine/VAccept.h"
#include "sorbine/VCreator.h"
#include "sorbine/VManagedObject.h"
#include "sorbine/VOutputIterator.h"
#include "sorbine/VScheduler.h"
#include "sorbine/VSlot.h"
#include "sorbine/VValue.h"
#include "tolven/TolvenActions.h"

#include <unordered_set>
#include <utility>

namespace Zamt {
namespace {

using Rethold::StrongPtr;

constexpr int maxSettleRounds = 100;

// The graph makes values by the name of their type, and the two types that this library takes from it have
// to be known under theirs before anyone asks.
template <class Value>
bool registerValueType() {
  VValueCreator::registerCreator(Rethold::Typename(Rethold::typeOf<Value>()),
                                 std::make_shared<TypedValueCreator<Value>>());
  return true;
}
[[maybe_unused]] const bool numbersAreRegistered = registerValueType<VValue<double>>();
[[maybe_unused]] const bool actionsAreRegistered = registerValueType<VValue<StrongPtr<VAction>>>();

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

StrongPtr<VObject> findObject(const std::string& name) { return VManagedObject::find<VObject>(name); }

StrongPtr<VSlot> inputOf(const VObject& object, const std::string& name) {
  int index = -1;
  return object.getSlot(name, index);
}

/// The input called `name`, or failing that the output.
StrongPtr<VSlot> slotOfEitherKind(const VObject& object, const std::string& name) {
  struct ByName : VOutputIterator {
    explicit ByName(const std::string& wanted) : name(wanted) {}
    bool apply(Rethold::TypeId /*type*/, const StrongPtr<VSlot>& slot) override {
      if (slot->name() != name) return true;
      found = slot;
      return false;
    }
    const std::string& name;
    StrongPtr<VSlot> found;
  };
  if (auto input = inputOf(object, name)) return input;
  ByName byName(name);
  object.iterate_outputs(byName);
  return byName.found;
}

/// What the slot is about: its parameter's value, or the member of it that the slot names; null if there is
/// no such value.
StrongPtr<VValueBase> valueOf(const VSlot& slot) {
  const auto& parameter = slot.parameter();
  const auto value = parameter ? parameter->value() : nullptr;
  return value && !slot.member().empty() ? value->component(slot.member()) : value;
}

std::string textOf(const VSlot& slot, const StrongPtr<ValuePool>& pool) {
  const auto& parameter = slot.parameter();
  return parameter ? parameter->getValueAsText(pool, {}, false) : std::string();
}

std::string fullName(const VCreatorBase& creator) { return creator.category() + "/" + creator.identifier(); }

bool publishes(const VObject& object, const std::string& kind) {
  struct Publishes : VOutputIterator {
    explicit Publishes(const std::string& wanted) : kind(wanted) {}
    bool apply(Rethold::TypeId type, const StrongPtr<VSlot>& /*slot*/) override {
      found = found || kind.empty() || Rethold::Typename(type).find(kind) != std::string::npos;
      return true;
    }
    const std::string& kind;
    bool found = false;
  };
  Publishes iterator(kind);
  object.iterate_outputs(iterator);
  return iterator.found;
}

} // namespace

TolvenQuindleOps::TolvenQuindleOps(StrongPtr<ValuePool> pool) : pool_(std::move(pool)) {}

TolvenQuindleOps::~TolvenQuindleOps() = default;

StrongPtr<VObject> TolvenQuindleOps::resolve(const std::string& name, Diag& diag) const {
  return guarded(diag, StrongPtr<VObject>(), [&] {
    auto object = findObject(name);
    if (!object) diag.error("There is no object called " + quoted(name) + ".", name);
    return object;
  });
}

bool TolvenQuindleOps::exists(const std::string& name) { return findObject(name) != nullptr; }

std::string TolvenQuindleOps::create(const std::string& creator, const std::string& name, Diag& diag) {
  return guarded(diag, std::string(), [&]() -> std::string {
    const auto maker = VManagedObject::find<VCreatorBase>(creator);
    if (!maker) {
      diag.error("There is no creator called " + quoted(creator) +
                     ". Either the name is wrong or the plugin providing it was not built.",
                 creator);
      return {};
    }
    const auto object = maker->create(name, Rethold::Intercube());
    if (!object) {
      diag.error(quoted(creator) + " refused to create an object.", creator);
      return {};
    }
    object->initialize();
    return object->name();
  });
}

bool TolvenQuindleOps::connect(const std::string& object, const std::string& slot, const std::string& source,
                               const std::string& sourceSlot, Diag& diag) {
  return guarded(diag, false, [&] {
    const std::string target = object + "." + slot;
    const auto result = TolvenActions::Attachment(object, slot, source, sourceSlot);
    if (!result.success) {
      diag.error("Could not attach " + target + " to " + source +
                     (sourceSlot.empty() ? "" : "." + sourceSlot) +
                     (result.reason.empty() ? "." : ": " + result.reason),
                 object);
      return false;
    }
    const auto reader = findObject(object);
    const auto input = reader ? inputOf(*reader, slot) : nullptr;
    if (!input || (input->parameter() && input->parameter()->source())) return true;
    diag.error("The attachment of " + target + " to " + source + " reported success but did not hold.",
               object);
    return false;
  });
}

bool TolvenQuindleOps::setParam(const std::string& object, const std::string& slot, const std::string& value,
                                Diag& diag) {
  return guarded(diag, false, [&] {
    const auto target = resolve(object, diag);
    if (!target) return false;
    const auto input = inputOf(*target, slot);
    if (!input) {
      diag.error(quoted(object) + " has no slot called " + quoted(slot) + ".", object);
      return false;
    }
    const auto parameter = input->parameter();
    if (parameter && parameter->setValueFromText(value, pool_, {})) return true;
    diag.error(quoted(value) + " is not a value " + object + "." + slot + " can take.", object);
    return false;
  });
}

bool TolvenQuindleOps::getParam(const std::string& object, const std::string& slot, std::string& value,
                                Diag& diag) {
  return guarded(diag, false, [&] {
    const auto target = resolve(object, diag);
    if (!target) return false;
    const auto found = slotOfEitherKind(*target, slot);
    if (!found) {
      diag.error(quoted(object) + " has no slot called " + quoted(slot) + ".", object);
      return false;
    }
    value = textOf(*found, pool_);
    return true;
  });
}

bool TolvenQuindleOps::fireAction(const std::string& object, const std::string& action, Diag& diag) {
  return guarded(diag, false, [&] {
    const auto target = resolve(object, diag);
    if (!target) return false;
    const auto refuse = [&](const std::string& message) {
      diag.error(message, object);
      return false;
    };
    const auto slot = inputOf(*target, action);
    if (!slot) return refuse(quoted(object) + " has no slot called " + quoted(action) + ".");
    const std::string name = quoted(object + "." + action);
    const auto value = valueOf(*slot);
    const auto type = value ? value->type() : Rethold::typeOf<void>();
    if (type != Rethold::typeOf<StrongPtr<VAction>>()) return refuse(name + " is not an action.");
    const auto parameter = slot->parameter();
    if (!parameter) return refuse(name + " has no parameter behind it.");
    const auto holder = valueAs<StrongPtr<VAction>>(value);
    const auto held = holder ? holder->held : nullptr;
    if (!held) return refuse(name + " holds no action to fire.");
    held->emitAction(pool_, parameter);
    if (parameter->value()) parameter->value()->touch();
    return true;
  });
}

std::vector<std::string> TolvenQuindleOps::objectsPublishing(const std::string& kind) {
  std::vector<std::string> names;
  const auto add = [&](int /*rank*/, const StrongPtr<VManagedObject>& managed, const std::string& name) {
    const auto object = std::dynamic_pointer_cast<VObject>(managed);
    if (object && object->creator() && publishes(*object, kind)) names.push_back(name);
    return true;
  };
  VManagedObject::iterate(Rethold::typeOf<VObject>(), add, LowestRank, HighestRank);
  return names;
}

std::string TolvenQuindleOps::sourceOf(const std::string& object, const std::string& slot) {
  const auto reader = findObject(object);
  const auto input = reader ? inputOf(*reader, slot) : nullptr;
  const auto parameter = input ? input->parameter() : nullptr;
  const auto source = parameter ? parameter->source() : nullptr;
  return source && source != input->owner() ? source->name() : std::string();
}

std::vector<std::string> TolvenQuindleOps::consumersOf(const std::string& object) {
  struct Readers : VOutputIterator {
    explicit Readers(StrongPtr<VObject> source) : self(std::move(source)) {}
    bool apply(Rethold::TypeId /*type*/, const StrongPtr<VSlot>& slot) override {
      if (!slot->parameter()) return true;
      slot->parameter()->iterateUsers([this](const StrongPtr<VObject>& reader, const std::string& /*slot*/) {
        if (reader != self && known.insert(reader.get()).second) names.push_back(reader->name());
        return true;
      });
      return true;
    }
    StrongPtr<VObject> self;
    std::unordered_set<const VObject*> known;
    std::vector<std::string> names;
  };
  const auto source = findObject(object);
  if (!source) return {};
  Readers readers(source);
  source->iterate_outputs(readers);
  return std::move(readers.names);
}

std::string TolvenQuindleOps::creatorOf(const std::string& object) {
  const auto target = findObject(object);
  const auto creator = target ? target->creator() : nullptr;
  return creator ? fullName(*creator) : std::string();
}

std::string TolvenQuindleOps::statusOf(const std::string& object) {
  const auto target = findObject(object);
  const auto slot = target ? slotOfEitherKind(*target, sceneWords::statusSlot) : nullptr;
  return slot ? textOf(*slot, pool_) : std::string();
}

std::string TolvenQuindleOps::createConsumer(const std::string& source, const std::string& creator,
                                             const std::string& acceptName, Diag& diag) {
  return guarded(diag, std::string(), [&]() -> std::string {
    const auto feeder = resolve(source, diag);
    if (!feeder) return {};
    const auto refuse = [&](const std::string& message) {
      diag.error(message, source);
      return std::string();
    };
    const auto list = VAcceptList::getAcceptors(feeder, LowestRank, HighestRank);
    if (!list || list->entries.empty())
      return refuse("Nothing can read what " + quoted(source) + " publishes.");
    for (const VAcception& entry : list->entries) {
      const auto maker = entry.creator.lock();
      if (!maker || (fullName(*maker) != creator && maker->identifier() != creator)) continue;
      if (!acceptName.empty() && entry.info.name != acceptName) continue;
      const auto reader = feeder->createChild(entry, Rethold::Intercube());
      if (!reader) return refuse(quoted(creator) + " could not be attached to " + quoted(source) + ".");
      reader->initialize();
      VScheduler::schedule(reader, 0.0, pool_);
      return reader->name();
    }
    return refuse(quoted(creator) + " cannot read what " + quoted(source) + " publishes.");
  });
}

bool TolvenQuindleOps::removeObject(const std::string& name, Diag& diag) {
  return guarded(diag, false, [&] {
    const auto object = resolve(name, diag);
    if (!object) return false;
    object->remove();
    return true;
  });
}

int TolvenQuindleOps::settle() {
  int total = 0;
  for (int round = 0; round < maxSettleRounds; ++round) {
    const int done = VScheduler::execute(1.0);
    if (done < 1) break;
    total += done;
  }
  return total;
}

} // namespace Zamt
