#include "sorbine/VAccept.h"

#include "sorbine/VCreator.h"
#include "sorbine/VObject.h"

#include <set>

namespace Zamt {
namespace {

class PublishedTypes : public VOutputIterator {
public:
  bool apply(Rethold::TypeId type, const Rethold::StrongPtr<VSlot>& /*slot*/) override {
    types.insert(type);
    return true;
  }

  std::set<Rethold::TypeId> types;
};

} // namespace

Rethold::StrongPtr<VAcceptList> VAcceptList::getAcceptors(const Rethold::StrongPtr<VObject>& object,
                                                          int lowestRank, int highestRank) {
  if (!object) return nullptr;
  PublishedTypes published;
  object->iterate_outputs(published);
  auto list = std::make_shared<VAcceptList>();
  const auto addWaysOf = [&](int /*rank*/, const Rethold::StrongPtr<VManagedObject>& managed,
                             const std::string& /*name*/) {
    const auto creator = std::dynamic_pointer_cast<VCreatorBase>(managed);
    for (const VAcceptInfo& info : creator->accepts())
      if (published.types.contains(info.type)) list->entries.push_back({creator, info});
    return true;
  };
  VManagedObject::iterate(Rethold::typeOf<VCreatorBase>(), addWaysOf, lowestRank, highestRank);
  return list->entries.empty() ? nullptr : list;
}

} // namespace Zamt
