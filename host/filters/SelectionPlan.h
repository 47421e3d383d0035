#pragma once

#include "host/filters/Selection.h"

#include <cstddef>
#include <vector>

namespace Zamt::Host {

/// One thing that is done to the points of each block. The points that a step keeps are a list; lists live in
/// slots, which are used again as soon as their last reader is through: a block needs as many as there are
/// lists alive at once, however many steps there are.
struct BlockWork {
  enum class Kind {
    All,    ///< Lists all points of the block.
    Load,   ///< Lists those in the mask of `step`.
    Filter, ///< Those of `source` that the filter of `step` keeps.
    Copy,   ///< Those of `source`.
    Union,  ///< Those of `source` and of `other`.
    Store,  ///< Adds those of `source` to the mask of `step`; writes no slot.
  };
  Kind kind = Kind::All;
  int step = -1;
  std::size_t target = 0; ///< The slot written; `source` itself where that is read for the last time.
  std::size_t source = 0;
  std::size_t other = 0;
};

/// Steps that are worked out together: one that asks about whole clouds, or else all up to the next such one,
/// block by block. Masks hold what stages leave for later ones.
struct SelectionStage {
  int cloudStep = -1;          ///< A filter that asks about whole clouds; -1 for block work.
  std::vector<BlockWork> work; ///< In this order for each block.
  std::size_t slots = 0;       ///< That a block's work takes.
  std::vector<int> made;       ///< Steps that have a mask from now on,
  std::vector<int> done;       ///< and those whose mask nothing behind this stage reads.
};

/// The stages that work out the last of `steps`, which are at least one and refer only to earlier ones. Steps
/// that the last one does not depend on are left out. The last stage leaves the mask of the last step.
std::vector<SelectionStage> planSelection(const std::vector<SelectionStep>& steps);

/// Whether a step joins two others.
inline bool isUnion(const SelectionStep& step) {
  return !step.filter && !step.cloudFilter && step.other >= 0;
}

} // namespace Zamt::Host
