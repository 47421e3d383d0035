#pragma once

#include "rethold/Export.h"
#include "rethold/Pointer.h"
#include "sorbine/VManagedObject.h"
#include "sorbine/VSlot.h"

#include <functional>
#include <string>
#include <vector>

namespace Zamt {

/// Something with named inputs and outputs.
class QUINDLE_PLATFORM_API VSlotContainer : public VManagedObject {
public:
  ~VSlotContainer() override;

  /// The input of that name, or null. `index` becomes its place among the inputs, -1 if there is none.
  Rethold::StrongPtr<VSlot> getSlot(const std::string& name, int& index) const;
  Rethold::StrongPtr<VSlot> getSlot(const std::string& name) const;

  /// Calls `callback` for each input with its place, in the order in which they were declared, until it
  /// returns false.
  void
  iterate_inputs(const std::function<bool(const Rethold::StrongPtr<VSlot>& slot, int index)>& callback) const;

  /// Called once on a new object, when it stands in the graph under its name.
  virtual void initialize();

protected:
  /// Declare an input or an output; names are unique among each. Most objects use `VObject::input` and its
  /// like; these take a slot over any parameter, or over none.
  void addInput(const Rethold::StrongPtr<VSlot>& slot);
  void addOutput(const Rethold::StrongPtr<VSlot>& slot);

  const std::vector<Rethold::StrongPtr<VSlot>>& inputs() const { return inputs_; }
  const std::vector<Rethold::StrongPtr<VSlot>>& outputs() const { return outputs_; }

private:
  std::vector<Rethold::StrongPtr<VSlot>> inputs_;
  std::vector<Rethold::StrongPtr<VSlot>> outputs_;
};

} // namespace Zamt
