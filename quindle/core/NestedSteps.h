#pragma once

#include "quindle/core/QuindleDocument.h"
#include "quindle/core/Tree.h"

#include <cstddef>
#include <vector>

namespace Zamt {

/// Whether a step of this kind has blocks.
inline bool hasBlocks(QuindleStep::Kind kind) {
  return kind == QuindleStep::Kind::If || kind == QuindleStep::Kind::ForEach;
}

/// The steps in the blocks of a step as one list, for the walks of `tree`.
class NestedSteps {
public:
  /// Of a step without blocks.
  NestedSteps() = default;

  /// Of an If its body and then its else body, of a ForEach its body, of any other step nothing, whatever its
  /// lists hold.
  explicit NestedSteps(const QuindleStep& step) {
    if (hasBlocks(step.kind)) body_ = &step.body;
    if (step.kind == QuindleStep::Kind::If) elseBody_ = &step.elseBody;
  }

  /// Of all lists of a step, whatever its kind.
  static NestedSteps all(const QuindleStep& step) {
    NestedSteps steps;
    steps.body_ = &step.body;
    steps.elseBody_ = &step.elseBody;
    return steps;
  }

  std::size_t size() const { return sizeOf(body_) + sizeOf(elseBody_); }

  const QuindleStep& operator[](std::size_t index) const {
    const std::size_t inBody = sizeOf(body_);
    return index < inBody ? (*body_)[index] : (*elseBody_)[index - inBody];
  }

private:
  static std::size_t sizeOf(const std::vector<QuindleStep>* list) { return list ? list->size() : 0; }

  const std::vector<QuindleStep>* body_ = nullptr;
  const std::vector<QuindleStep>* elseBody_ = nullptr;
};

using StepPlace = tree::Place<QuindleStep>;

/// Whether a step is the first of the "else" of the step around it.
inline bool startsElse(const StepPlace& place) {
  return place.parent && place.parent->kind == QuindleStep::Kind::If &&
         place.index == place.parent->body.size();
}

/// Calls the hooks of `tree::each` for every step of a list and of the blocks that `nestedIn` gives of each,
/// in the order of the text.
template <class NestedIn, class Enter, class Leave = tree::Nothing>
void eachStepWithin(const std::vector<QuindleStep>& steps, const NestedIn& nestedIn, const Enter& enter,
                    const Leave& leave = {}) {
  for (const QuindleStep& step : steps) tree::each(step, nestedIn, enter, leave);
}

/// The same, for the blocks that each kind of step has.
template <class Enter, class Leave = tree::Nothing>
void eachStep(const std::vector<QuindleStep>& steps, const Enter& enter, const Leave& leave = {}) {
  eachStepWithin(
      steps, [](const QuindleStep& step) { return NestedSteps(step); }, enter, leave);
}

} // namespace Zamt
