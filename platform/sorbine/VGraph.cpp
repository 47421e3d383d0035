#include "sorbine/VGraph.h"

#include <charconv>
#include <system_error>

namespace Zamt {
namespace {

// True if a kind may hold objects of `type`, so that a walk over creators passes a large scene by.
bool mayHold(Rethold::TypeId kind, Rethold::TypeId type) {
  if (type == Rethold::typeOf<VManagedObject>()) return true;
  const bool isScene = kind == Rethold::typeOf<VObject>();
  return isScene == (type == Rethold::typeOf<VObject>());
}

} // namespace

std::string VNames::freeName(const std::string& wanted) {
  if (!taken.contains(wanted)) return wanted;
  Suffixes& suffixes = suffixes_[wanted];
  while (true) {
    const bool reuse = !suffixes.freed.empty();
    const std::uint64_t number = reuse ? *suffixes.freed.begin() : suffixes.next++;
    if (reuse) suffixes.freed.erase(suffixes.freed.begin());
    std::string name = wanted + "_" + std::to_string(number);
    if (!taken.contains(name)) return name;
  }
}

void VNames::release(const std::string& name) {
  taken.erase(name);
  const std::size_t separator = name.rfind('_');
  if (separator == std::string::npos) return;
  const auto found = suffixes_.find(name.substr(0, separator));
  if (found == suffixes_.end()) return;
  std::uint64_t number = 0;
  const char* const begin = name.data() + separator + 1;
  const char* const end = name.data() + name.size();
  const auto [stop, error] = std::from_chars(begin, end, number);
  const bool isSuffix = error == std::errc() && stop == end && std::to_string(number) == begin;
  if (isSuffix && number >= 2 && number < found->second.next) found->second.freed.insert(number);
}

VGraph& VGraph::get() {
  static VGraph graph;
  return graph;
}

std::string VGraph::add(const Rethold::StrongPtr<VManagedObject>& object, const std::string& name, int rank) {
  if (!object) return {};
  if (object->inGraph()) return object->name();
  Registry& registry = registries_[object->kind()];
  object->name_ = registry.names.freeName(name);
  object->rank_ = rank;
  object->serial_ = ++lastSerial_;
  registry.names.taken.emplace(object->name_, Key(rank, object->serial_));
  registry.objects.emplace(Key(rank, object->serial_), object);
  object->added();
  return object->name_;
}

void VGraph::remove(VManagedObject& object) {
  const auto registry = registries_.find(object.kind());
  if (!object.inGraph() || registry == registries_.end()) return;
  due_.erase(object.serial_);
  nextRound_.erase(object.serial_);
  // The last strong pointer may be the graph's own: it goes when the bookkeeping is done.
  const auto node = registry->second.objects.extract(Key(object.rank_, object.serial_));
  registry->second.names.release(object.name_);
  object.serial_ = 0;
}

Rethold::StrongPtr<VManagedObject> VGraph::find(Rethold::TypeId type, const std::string& name) const {
  for (const auto& [kind, registry] : registries_) {
    if (!mayHold(kind, type)) continue;
    const auto named = registry.names.taken.find(name);
    if (named == registry.names.taken.end()) continue;
    const auto& object = registry.objects.at(named->second);
    if (object->isA(type)) return object;
  }
  return nullptr;
}

bool VGraph::iterateOne(Registry& registry, Rethold::TypeId type, const VManagedObject::Callback& callback,
                        int lowest, int highest) {
  // Found afresh after each call, since the callback may have changed the map.
  auto next = registry.objects.lower_bound(Key(lowest, 0));
  while (next != registry.objects.end() && next->first.first <= highest) {
    const Key place = next->first;
    const auto object = next->second;
    if (object->isA(type) && !callback(place.first, object, object->name())) return false;
    next = registry.objects.upper_bound(place);
  }
  return true;
}

void VGraph::iterate(Rethold::TypeId type, const VManagedObject::Callback& callback, int lowest,
                     int highest) {
  for (auto& [kind, registry] : registries_)
    if (mayHold(kind, type) && !iterateOne(registry, type, callback, lowest, highest)) return;
}

void VGraph::clear() {
  due_.clear();
  nextRound_.clear();
  // The objects go after the graph is in order again, because their destructors may ask it something.
  const Registry scene = std::exchange(registries_[Rethold::typeOf<VObject>()], Registry());
  for (const auto& [place, object] : scene.objects) object->serial_ = 0;
}

void VGraph::schedule(VObject& object) {
  if (!object.inGraph()) return;
  const bool hadItsTurn = running_ && object.round_ == round_;
  Due& list = hadItsTurn ? nextRound_ : due_;
  list.try_emplace(list.end(), object.serial_, std::static_pointer_cast<VObject>(object.shared_from_this()));
}

int VGraph::execute() {
  if (running_) return 0;
  running_ = true;
  ++round_;
  int count = 0;
  while (!due_.empty()) {
    const auto object = due_.begin()->second.lock();
    due_.erase(due_.begin());
    if (!object) continue;
    object->round_ = round_;
    object->run();
    ++count;
  }
  due_ = std::exchange(nextRound_, Due());
  running_ = false;
  return count;
}

} // namespace Zamt
