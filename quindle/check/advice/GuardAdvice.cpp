#include "quindle/check/advice/GuardAdvice.h"

#include "quindle/core/Refusals.h"

namespace Zamt {

namespace {

/// How many guards a step becomes.
int guardsOf(QuindleStep::Kind kind) {
  switch (kind) {
  case QuindleStep::Kind::Let:
  case QuindleStep::Kind::Call:
  case QuindleStep::Kind::Report:
  case QuindleStep::Kind::Run: return 1;
  case QuindleStep::Kind::Classify: return 3; // to select nothing, to select, and to apply
  default: return 0;
  }
}

} // namespace

void GuardAdvice::start(const QuindleTrigger& trigger) {
  guards_ = {};
  isOver_ = &trigger != advisor_.document().runTrigger();
}

void GuardAdvice::step(const QuindleStep& step) {
  for (int left = guardsOf(step.kind); left > 0 && !isOver_; --left) {
    if (guards_.count()) continue;
    advisor_.warn(step, refusal::guardsTooLarge);
    isOver_ = true;
  }
}

void GuardAdvice::startElse(const QuindleStep& step) {
  guards_.leave();
  guards_.enter(step.condition, true);
}

} // namespace Zamt
