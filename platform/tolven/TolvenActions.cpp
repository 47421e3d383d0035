#include "tolven/TolvenActions.h"

#include "sorbine/VObject.h"

namespace Zamt {

TolvenActions::Result TolvenActions::Attachment(const std::string& object, const std::string& slot,
                                                const std::string& source, const std::string& sourceSlot) {
  const auto missing = [](const std::string& name) {
    return Result{false, "There is no object called \"" + name + "\"."};
  };
  const auto reader = VManagedObject::find<VObject>(object);
  if (!reader) return missing(object);
  if (source.empty()) {
    const auto input = reader->getSlot(slot);
    if (!input) return {false, "\"" + object + "\" has no input called \"" + slot + "\"."};
    input->detach();
    return {true, {}};
  }
  const auto feeder = VManagedObject::find<VObject>(source);
  if (!feeder) return missing(source);
  Result result;
  result.success = reader->attach(slot, *feeder, sourceSlot, result.reason);
  return result;
}

} // namespace Zamt
