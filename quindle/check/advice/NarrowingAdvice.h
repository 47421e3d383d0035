#pragma once

#include "quindle/check/advice/Advisor.h"
#include "quindle/check/advice/KeptConditions.h"

#include <memory>
#include <vector>

namespace Zamt {

/// Advises on selects that narrow what was not meant to be narrowed. All selects of a trigger add to one
/// chain of filters, in the order of the text and whatever an "if" around them decides; what people mean is
/// that a "classify" ends a selection and that a branch keeps to itself.
class NarrowingAdvice {
public:
  explicit NarrowingAdvice(Advisor& advisor) : advisor_(advisor) {}

  /// Begins a trigger.
  void start();

  void select(const QuindleStep& step, KeptConditions conditions);
  void classify(const QuindleStep& step);

  /// Around the steps of an "if" or a loop, with `startElse` before those of the "else".
  /// @{
  void openBlocks();
  void startElse();
  void closeBlocks();
  /// @}

private:
  /// The selects of some part of the text; without conditions if there are none.
  struct Selects {
    std::shared_ptr<const KeptConditions> conditions;
    std::int32_t line = 0; ///< Of the last one.

    void join(const Selects& others);
    bool imply(const Selects& others) const;
  };

  /// The selects on the way to a step, by what they mean to it.
  struct Way {
    Selects ended;     ///< Behind them stands a "classify".
    Selects branched;  ///< They stand in blocks that the step is not in, with no "classify" behind them.
    Selects open;      ///< They make one selection with whatever comes.
    bool told = false; ///< That this selection narrows another has been said.

    void end();
  };

  /// An "if" or a loop whose steps are being looked at.
  struct Block {
    Way before;
    Selects inside; ///< All of them, in blocks within too.
    bool classifies = false;
  };

  void tell(const QuindleStep& step, const Selects& narrowed, const char* why);

  Advisor& advisor_;
  Way way_;
  std::vector<Block> blocks_;
};

} // namespace Zamt
