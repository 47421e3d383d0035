#pragma once

#include "quindle/core/NestedSteps.h"
#include "quindle/plan/ParamIndex.h"
#include "quindle/plan/QuindlePlanNode.h"
#include "quindle/runtime/QuindleRuntime.h"
#include "quindle/runtime/StepGuards.h"

#include <string>
#include <vector>

namespace Zamt {

/// The steps in the blocks of a step that are compiled with it: of an "if" those of both blocks. A loop is
/// refused as a whole.
inline NestedSteps compiledSteps(const QuindleStep& step) {
  return step.kind == QuindleStep::Kind::If ? NestedSteps(step) : NestedSteps();
}

/// Compiles the blocks of one document into one program. A step that fails does not stop the others, so that
/// one compilation reports every fault.
class QuindleRuntime::ProgramCompiler {
public:
  /// `params` are the document's. `start` is the object that the first "select" reads, empty for none.
  ProgramCompiler(QuindleRuntime& runtime, const QuindleDocument& doc, const ParamIndex& params,
                  const std::string& start, Program& program, Diag& diag);

  bool compileBody(const std::vector<QuindleStep>& steps);

private:
  /// A block that is being compiled.
  struct Body {
    QuindlePlanNode plan;  ///< Of the latest "select" in this very block.
    bool selected = false; ///< Whether there is one that was compiled.
  };

  void openBlock(const QuindleStep& owner, bool isElse);
  void closeBlock();
  bool compileStep(const QuindleStep& step);
  bool compileCreate(const QuindleStep& step);
  bool compileSelectStep(const QuindleStep& step);
  bool compileClassifyStep(const QuindleStep& step);
  bool compileSet(const QuindleStep& step);
  bool compileConnect(const QuindleStep& step);
  bool compileCall(const QuindleStep& step);
  bool compileReport(const QuindleStep& step);
  bool compileLet(const QuindleStep& step);
  bool compileRun(const QuindleStep& step);

  /// The prefix of the names of the next "select" or "classify into".
  std::string nextPrefix();
  /// Gives the step its guard and appends it; fails once the guards have grown too large.
  bool append(RunStep&& runStep, const QuindleStep& step);
  bool appendFire(const std::string& object, const std::string& action, bool writes, bool counts,
                  const QuindleStep& step);
  /// Reports an error at the step; always false.
  bool fail(const QuindleStep& step, const std::string& message);

  QuindleRuntime& runtime_;
  const QuindleDocument& doc_;
  const ParamIndex& params_;
  Program& program_;
  Diag& diag_;
  const std::string prefix_;
  std::string chain_;        ///< The end of the filter chain so far: one for all blocks.
  std::vector<Body> bodies_; ///< Those that are open, outermost first.
  StepGuards guards_;
  bool guardsFull_ = false;
};

} // namespace Zamt
