#pragma once

#include "rethold/Pointer.h"
#include "rethold/Typename.h"
#include "sorbine/VManagedObject.h"
#include "sorbine/VObject.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

namespace Zamt {

/// The names given out among things of one kind.
class VNames {
public:
  /// `wanted`, or the first free one of wanted_2, wanted_3 and so on. The cost does not depend on how often
  /// the same name was asked for.
  std::string freeName(const std::string& wanted);

  /// Takes back a name that nothing bears any more.
  void release(const std::string& name);

  std::unordered_map<std::string, std::pair<int, std::uint64_t>> taken; ///< Rank and serial by name.

private:
  struct Suffixes {
    std::uint64_t next = 2;        ///< All below were given out once.
    std::set<std::uint64_t> freed; ///< Those of them that came back; some may be taken again.
  };
  std::unordered_map<std::string, Suffixes> suffixes_;
};

/// The one graph of the process: who is in it, under which name, and who is due to compute.
class VGraph {
public:
  static VGraph& get();

  /// A new tick of the clock that ages are measured by.
  std::uint64_t tick() { return ++clock_; }

  std::string add(const Rethold::StrongPtr<VManagedObject>& object, const std::string& name, int rank);
  void remove(VManagedObject& object);
  Rethold::StrongPtr<VManagedObject> find(Rethold::TypeId type, const std::string& name) const;
  void iterate(Rethold::TypeId type, const VManagedObject::Callback& callback, int lowest, int highest);
  void clear();

  void schedule(VObject& object);
  int execute();

private:
  using Key = std::pair<int, std::uint64_t>; ///< Rank and serial: the order of walks.
  struct Registry {
    std::map<Key, Rethold::StrongPtr<VManagedObject>> objects;
    VNames names;
  };
  using Due = std::map<std::uint64_t, Rethold::WeakPtr<VObject>>; ///< By serial: the order of creation.

  static bool iterateOne(Registry& registry, Rethold::TypeId type, const VManagedObject::Callback& callback,
                         int lowest, int highest);

  std::map<Rethold::TypeId, Registry> registries_; ///< By kind.
  std::uint64_t lastSerial_ = 0;
  std::uint64_t clock_ = 0;
  Due due_;
  Due nextRound_; ///< Due again, after having computed in the round that is running.
  std::uint64_t round_ = 0;
  bool running_ = false;
};

} // namespace Zamt
