#pragma once

#include "rethold/Export.h"
#include "rethold/Pointer.h"
#include "rethold/Typename.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <string>

namespace Zamt {

class VManagedObject;

/// The bounds that take in every rank.
inline constexpr int LowestRank = std::numeric_limits<std::int32_t>::min();
inline constexpr int HighestRank = std::numeric_limits<std::int32_t>::max();

/// What a walk over managed objects calls.
class QUINDLE_PLATFORM_API VManagedObjectIterator {
public:
  virtual ~VManagedObjectIterator();

  /// Takes one object; false ends the walk.
  virtual bool apply(int rank, const Rethold::StrongPtr<VManagedObject>& object, const std::string& name) = 0;
};

/// Whatever the graph knows by name: objects, creators of objects, creators of values. The graph is one for
/// the process and belongs to the thread that drives it; nothing is locked.
///
/// The graph owns what was added to it. Names are unique among things of one kind: an object and a creator
/// may share one.
class QUINDLE_PLATFORM_API VManagedObject : public std::enable_shared_from_this<VManagedObject> {
public:
  using Callback = std::function<bool(int rank, const Rethold::StrongPtr<VManagedObject>& object,
                                      const std::string& name)>;

  VManagedObject() = default;
  VManagedObject(const VManagedObject&) = delete;
  VManagedObject& operator=(const VManagedObject&) = delete;
  virtual ~VManagedObject();

  /// The name in the graph; empty before the object was added to it.
  const std::string& name() const { return name_; }

  /// True for those of its types that the graph tells apart: VManagedObject, VObject, VInputCreatorBase,
  /// VCreatorBase, VValueCreator.
  virtual bool isA(Rethold::TypeId type) const;

  /// True between being added to the graph and being taken out of it.
  bool inGraph() const { return serial_ != 0; }

  /// Takes the object out of the graph, which lets go of it. Does nothing if it is not in there.
  virtual void remove();

  /// Puts `object` into the graph under `name`, or, if that is taken by another of its kind, under the first
  /// free one of name_2, name_3 and so on. Returns the name it got. An object is added once in its life.
  static std::string add(const Rethold::StrongPtr<VManagedObject>& object, const std::string& name,
                         int rank = 0);

  /// The object of that type and name, or null.
  static Rethold::StrongPtr<VManagedObject> find(Rethold::TypeId type, const std::string& name);

  /// The same, as a pointer to `T`, which is one of the types of `isA`.
  template <class T>
  static Rethold::StrongPtr<T> find(const std::string& name) {
    return std::dynamic_pointer_cast<T>(find(Rethold::typeOf<T>(), name));
  }

  /// Calls `callback` for each object of the type whose rank lies within the bounds, both included: lower
  /// ranks first, within a rank in the order in which they were added, until it returns false. Objects may
  /// be added and removed meanwhile; those added behind the place of the walk are still visited.
  static void iterate(Rethold::TypeId type, const Callback& callback, int lowestRank = LowestRank,
                      int highestRank = HighestRank);

  /// The same walk, with an iterator.
  static void traverse(Rethold::TypeId type, VManagedObjectIterator& iterator, int lowestRank = LowestRank,
                       int highestRank = HighestRank);

  /// Empties the scene: lets go of all objects and of the work that is scheduled for them. Creators stay. For
  /// a host that starts over and for tests.
  static void clear();

protected:
  /// The kind among which the name is unique.
  virtual Rethold::TypeId kind() const = 0;

  /// Called once, when the object has its name and its place in the graph.
  virtual void added();

private:
  friend class VGraph;

  std::string name_;
  int rank_ = 0;
  std::uint64_t serial_ = 0; ///< Counts what was ever added; 0 while not in the graph.
};

} // namespace Zamt
