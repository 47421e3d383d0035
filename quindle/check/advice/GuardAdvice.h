#pragma once

#include "quindle/check/advice/Advisor.h"
#include "quindle/runtime/StepGuards.h"

namespace Zamt {

/// Advises on blocks of "if" nested so deeply, with so many steps in them, that compilation refuses them.
class GuardAdvice {
public:
  explicit GuardAdvice(Advisor& advisor) : advisor_(advisor) {}

  /// Begins a trigger, of which only one is compiled.
  void start(const QuindleTrigger& trigger);

  void step(const QuindleStep& step);

  /// Around the steps of an "if", with `startElse` before those of its "else".
  /// @{
  void openBlocks(const QuindleStep& step) { guards_.enter(step.condition, false); }
  void startElse(const QuindleStep& step);
  void closeBlocks() { guards_.leave(); }
  /// @}

private:
  Advisor& advisor_;
  StepGuards guards_;
  bool isOver_ = false; ///< Nothing more is to be counted.
};

} // namespace Zamt
