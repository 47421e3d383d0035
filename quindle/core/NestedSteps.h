#pragma once

#include "quindle/core/QuindleDocument.h"

namespace Zamt {

/// The steps in the blocks of a step as one list, for `tree::walk`: of an If its body and then its else body,
/// of a ForEach its body, of any other step nothing, whatever its lists hold.
class NestedSteps {
public:
  explicit NestedSteps(const QuindleStep& step) : step_(step) {}

  std::size_t size() const {
    switch (step_.kind) {
    case QuindleStep::Kind::If: return step_.body.size() + step_.elseBody.size();
    case QuindleStep::Kind::ForEach: return step_.body.size();
    default: return 0;
    }
  }

  const QuindleStep& operator[](std::size_t index) const {
    const std::size_t inBody = step_.body.size();
    return index < inBody ? step_.body[index] : step_.elseBody[index - inBody];
  }

private:
  const QuindleStep& step_;
};

/// Whether a step of this kind has blocks.
inline bool hasBlocks(QuindleStep::Kind kind) {
  return kind == QuindleStep::Kind::If || kind == QuindleStep::Kind::ForEach;
}

} // namespace Zamt
