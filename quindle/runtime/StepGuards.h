#pragma once

#include "quindle/core/QuindleDocument.h"

#include <cstddef>
#include <vector>

namespace Zamt {

/// How much all guards of one program may weigh together, inclusive: one for each condition, each node of it
/// and each item of its tuples, and one for every 16 bytes of its texts. The guard of every step repeats all
/// conditions around the step, so blocks nested deeply with steps at every level would grow with the square
/// of the input; this holds a program's guards to about two gigabytes, and still lets a million nested blocks
/// through.
inline constexpr std::size_t maxGuardWeight = 10'000'000;

/// The conditions around the step that is being compiled. They are only referred to, so the document has to
/// stay as it is; a guard is built when a step needs one.
class StepGuards {
public:
  /// Goes into a block that is entered if `condition` holds, or does not.
  void enter(const QuindleExpr& condition, bool negated);

  /// Goes out of the innermost block.
  void leave();

  /// Counts the guard of a step without building it. False, with nothing counted, once the guards would weigh
  /// more than `maxGuardWeight`.
  bool count();

  /// Makes `guard` the conjunction of all conditions around, nested to the left; of kind None if there are
  /// none, and counts it. False, with `guard` untouched, if it cannot be counted.
  bool build(QuindleExpr& guard);

private:
  struct Level {
    const QuindleExpr* condition;
    bool negated;
    std::size_t weight; ///< Of this condition and all around it.
  };

  std::vector<Level> levels_;
  std::size_t counted_ = 0; ///< What the guards counted so far weigh.
};

} // namespace Zamt
