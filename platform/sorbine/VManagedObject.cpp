#include "sorbine/VManagedObject.h"

#include "sorbine/VGraph.h"

namespace Zamt {

VManagedObjectIterator::~VManagedObjectIterator() = default;

VManagedObject::~VManagedObject() = default;

bool VManagedObject::isA(Rethold::TypeId type) const { return type == Rethold::typeOf<VManagedObject>(); }

void VManagedObject::remove() { VGraph::get().remove(*this); }

void VManagedObject::added() {}

std::string VManagedObject::add(const Rethold::StrongPtr<VManagedObject>& object, const std::string& name,
                                int rank) {
  return VGraph::get().add(object, name, rank);
}

Rethold::StrongPtr<VManagedObject> VManagedObject::find(Rethold::TypeId type, const std::string& name) {
  return VGraph::get().find(type, name);
}

void VManagedObject::iterate(Rethold::TypeId type, const Callback& callback, int lowestRank,
                             int highestRank) {
  VGraph::get().iterate(type, callback, lowestRank, highestRank);
}

void VManagedObject::traverse(Rethold::TypeId type, VManagedObjectIterator& iterator, int lowestRank,
                              int highestRank) {
  iterate(
      type,
      [&iterator](int rank, const Rethold::StrongPtr<VManagedObject>& object, const std::string& name) {
        return iterator.apply(rank, object, name);
      },
      lowestRank, highestRank);
}

void VManagedObject::clear() { VGraph::get().clear(); }

} // namespace Zamt
