#pragma once

#include "quindle/check/Findings.h"
#include "quindle/core/NestedSteps.h"
#include "quindle/core/QuindleDocument.h"

#include <set>
#include <string_view>
#include <vector>

namespace Zamt {

/// Checks the steps of the triggers of one document. What is in reach at a step is kept once, with what a
/// block has to take back at its end: a copy a block would cost the square of their depth.
class StepChecks {
public:
  /// Both have to outlive it.
  StepChecks(const QuindleDocument& doc, Findings& findings);

  /// Each trigger starts afresh, with the names of the parameters.
  void check(const QuindleTrigger& trigger);

private:
  using Names = std::set<std::string_view>;

  /// A step whose blocks are being checked.
  struct Open {
    std::size_t added;           ///< How much of `added_` was there before it.
    bool selectedBefore;         ///< On the way to it.
    bool selectedInBody = false; ///< Behind the body of an "if", once that was checked.
  };

  void enter(const QuindleStep& step, const StepPlace& place);
  void leave(const QuindleStep& step);
  void checkStep(const QuindleStep& step);
  void checkCreate(const QuindleStep& step);
  void checkClassify(const QuindleStep& step);
  void checkChange(const QuindleStep& step);
  void openBlocks(const QuindleStep& step);
  void startElse();
  void closeBlocks(const QuindleStep& step);

  void define(const QuindleStep& step);
  void add(std::string_view name);
  void forget(std::size_t added);

  const QuindleDocument& doc_;
  Findings& findings_;
  Names scope_;                        ///< Parameters, "let" names, objects and loop variables in reach.
  std::vector<Names::iterator> added_; ///< What the trigger put into `scope_`, in order.
  std::vector<Open> open_;
  bool selected_ = false; ///< A "select" has certainly been passed.
};

} // namespace Zamt
