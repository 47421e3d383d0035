#pragma once

#include "cadmer/VAction.h"
#include "rethold/Export.h"
#include "rethold/Intercube.h"
#include "rethold/Pointer.h"
#include "sorbine/VOutputIterator.h"
#include "sorbine/VSlot.h"
#include "sorbine/VSlotContainer.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace Zamt {

class VCreatorBase;
struct VAcception;

/// An object of the scene. A class of objects declares its slots where it declares its members, and does its
/// work in `compute`:
///
///   class Doubler : public VObject {
///     VInput<double> value_ = input<double>("value", "What to double.", 1.0);
///     VOutput<double> result_ = output<double>("result", "Twice the value.");
///     Rethold::StrongPtr<VSlot> reset_ = action("reset", "Back to one.", [this] { value_.set(1.0); });
///     void compute() override { result_.publish(2 * value_.get()); }
///   };
///
/// It comes into the scene through a creator (`registerCreator` in sorbine/VCreator.h) or through
/// `VManagedObject::add`, and is owned by the graph. Nothing in the graph refers strongly from one object to
/// another, so a chain of any length is destroyed without recursion; an object should not hold another
/// strongly either, but ask its input for its `source`.
class QUINDLE_PLATFORM_API VObject : public VSlotContainer {
public:
  ~VObject() override;

  /// The creator that made the object; null if none did or if it is gone.
  Rethold::StrongPtr<VCreatorBase> creator() const { return creator_.lock(); }

  /// Walks the outputs in the order in which they were declared.
  void iterate_outputs(VOutputIterator& iterator) const;

  /// Makes an object that reads this one in the way that `acception` says, named after its creator. Null if
  /// the creator is gone or refuses, or if the new object can't be attached; then nothing is left behind.
  /// The caller initialises the new object.
  Rethold::StrongPtr<VObject> createChild(const VAcception& acception, const Rethold::Intercube& context);

  /// Attaches the input called `slot` to an output of `source`, which has to publish the type that the input
  /// reads: the one called `sourceSlot`, or, if that is empty, the one called like the input, if its type
  /// fits, or else the first whose type does. False, with nothing changed, if there is no such input or
  /// output or if the object does not accept it; `reason` then says why in a sentence, if it is known.
  bool attach(const std::string& slot, VObject& source, const std::string& sourceSlot, std::string& reason);

  /// Whether the object lets `output`, whose type fits, feed its `input`; if not, `reason` may say why in a
  /// sentence. For what types cannot express.
  virtual bool accepts(const VSlot& input, const VSlot& output, std::string& reason) const;

  /// Puts the object on the schedule for the first time. An override calls this one.
  void initialize() override;

  /// Takes the object out of the graph and detaches its readers.
  void remove() override;

  bool isA(Rethold::TypeId type) const override;

protected:
  VObject();

  /// The work of the object: called by the scheduler after an input changed or was attached differently, and
  /// once in the beginning. Reads inputs, publishes outputs, throws nothing.
  virtual void compute();

  /// Puts the object on the schedule, as a changed input does.
  void schedule();

  /// Declares an input with its value while nothing feeds it.
  template <class T>
  VInput<T> input(const std::string& name, const std::string& help, T initial = T{}) {
    auto value = std::make_shared<VValue<T>>(std::move(initial));
    auto slot = std::make_shared<VSlot>(name, help, std::make_shared<VParameter>(std::move(value)));
    addInput(slot);
    return VInput<T>(std::move(slot));
  }

  /// Declares an output with its value until something is published.
  template <class T>
  VOutput<T> output(const std::string& name, const std::string& help, T initial = T{}) {
    auto value = std::make_shared<VValue<T>>(std::move(initial));
    auto slot = std::make_shared<VSlot>(
        name, help, std::make_shared<VParameter>(std::move(value), VParameter::Access::Published));
    addOutput(slot);
    return VOutput<T>(std::move(slot));
  }

  /// Declares an action slot. Firing it calls `callback` at once, as long as the object lives; it does not
  /// put the object on the schedule, which `callback` does itself if its work had better wait.
  Rethold::StrongPtr<VSlot> action(const std::string& name, const std::string& help,
                                   std::function<void()> callback);

  Rethold::TypeId kind() const override;
  void added() override;

private:
  friend class VCreatorBase;
  friend class VGraph;
  friend class VSlot;

  void run();

  Rethold::WeakPtr<VCreatorBase> creator_;
  std::uint64_t computedAt_ = 0; ///< Tick at which the last compute began; 0 before the first.
  std::uint64_t round_ = 0;      ///< The last round of the scheduler that ran the object.
};

} // namespace Zamt
