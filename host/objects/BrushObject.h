#pragma once

#include "host/filters/Selection.h"
#include "host/objects/Grid.h"

#include "rethold/Pointer.h"
#include "sorbine/VObject.h"

#include <string>
#include <vector>

namespace Zamt::Host {

/// An object that keeps some of the points that its inputs bring. What it publishes under "brush" stands for
/// itself: a selection is worked out by following the brushes back to where they begin, once a cloud is at
/// hand.
class BrushObject : public VObject {
public:
  using BrushPtr = Rethold::StrongPtr<Brush>;

  /// The inputs that bring points, at most two; none for an object that a selection starts from.
  virtual std::vector<const VInput<BrushPtr>*> brushInputs() const { return {}; }

  /// Fills in what the object does to the points that its inputs bring. `step.source` and `step.other` are
  /// set already. False, with a sentence in `problem`, when it cannot be done with this data.
  virtual bool describe(const Grid& grid, SelectionStep& step, std::string& problem) = 0;

protected:
  /// Says in `status` what the object does, or why it cannot.
  void tell(const std::string& state) { status_.publish(state); }

private:
  VOutput<BrushPtr> brush_ =
      output<BrushPtr>("brush", "The points that are kept.", std::make_shared<Brush>());
  VOutput<std::string> status_ = output<std::string>("status", "What the object did last.");
};

/// Follows the brushes from `end` back to where they begin and appends what each does to `steps`, every
/// object once, sources first. With a null `end` there are no steps, and so every point. False, with a
/// sentence in `problem`, when one of them cannot be used or they run in a circle.
bool buildSelection(const Rethold::StrongPtr<VObject>& end, const Grid& grid,
                    std::vector<SelectionStep>& steps, std::string& problem);

} // namespace Zamt::Host
