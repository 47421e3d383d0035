#include "sorbine/VCreator.h"

#include <utility>

namespace Zamt {

VInputCreatorBase::VInputCreatorBase(std::string category, std::string identifier, VCreatorInfo info)
    : category_(std::move(category)), identifier_(std::move(identifier)), info_(std::move(info)) {}

VInputCreatorBase::~VInputCreatorBase() = default;

bool VInputCreatorBase::isA(Rethold::TypeId type) const {
  return type == Rethold::typeOf<VInputCreatorBase>() || VManagedObject::isA(type);
}

Rethold::TypeId VInputCreatorBase::kind() const { return Rethold::typeOf<VInputCreatorBase>(); }

VCreatorBase::VCreatorBase(std::string category, std::string identifier, VCreatorInfo info, Factory factory)
    : VInputCreatorBase(std::move(category), std::move(identifier), std::move(info)),
      factory_(std::move(factory)) {}

VCreatorBase::~VCreatorBase() = default;

Rethold::StrongPtr<VObject> VCreatorBase::create(const std::string& name,
                                                 const Rethold::Intercube& /*context*/) {
  auto object = factory_ ? factory_() : nullptr;
  if (!object) return nullptr;
  object->creator_ = std::static_pointer_cast<VCreatorBase>(shared_from_this());
  add(object, name.empty() ? identifier() : name);
  return object;
}

bool VCreatorBase::isA(Rethold::TypeId type) const {
  return type == Rethold::typeOf<VCreatorBase>() || VInputCreatorBase::isA(type);
}

Rethold::StrongPtr<VCreatorBase> registerCreator(const std::string& category, const std::string& identifier,
                                                 VCreatorInfo info, VCreatorBase::Factory factory) {
  const std::string name = category + "/" + identifier;
  if (auto known = VManagedObject::find<VCreatorBase>(name)) return known;
  const int rank = info.rank;
  auto creator = std::make_shared<VCreatorBase>(category, identifier, std::move(info), std::move(factory));
  VManagedObject::add(creator, name, rank);
  return creator;
}

} // namespace Zamt
