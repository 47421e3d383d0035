#include "quindle/core/Guarded.h"
#include "quindle/core/NestedSteps.h"
#include "quindle/core/Refusals.h"
#include "quindle/plan/ParamIndex.h"
#include "quindle/runtime/ProgramCompiler.h"
#include "quindle/runtime/QuindleRuntime.h"

#include <string>
#include <vector>

namespace Zamt {

namespace {

/// Every "select" of the steps and of the blocks of their "if"s; those of a loop do not count.
std::vector<const QuindleStep*> selectsIn(const std::vector<QuindleStep>& steps) {
  std::vector<const QuindleStep*> found;
  eachStepWithin(steps, compiledSteps, [&found](const QuindleStep& step) {
    if (step.kind == QuindleStep::Kind::Select) found.push_back(&step);
  });
  return found;
}

/// Whether any of the conditions names a parameter that stands for the region which the user paints.
bool mentionsBrush(const std::vector<const QuindleStep*>& selects, const ParamIndex& params) {
  bool found = false;
  for (const QuindleStep* const select : selects)
    tree::each(
        select->condition, [](const QuindleExpr& node) -> const auto& { return node.operands; },
        [&](const QuindleExpr& node) {
          if (found || node.kind != QuindleExpr::Kind::Reference) return;
          const QuindleParam* const param = params.find(node.name);
          found = param && param->defaultSource == QuindleParam::DefaultSource::Brush;
        });
  return found;
}

} // namespace

bool QuindleRuntime::compile(const QuindleDocument& doc, Program& program, Diag& diag) {
  return guarded(diag, false, [&] { return build(doc, program, diag); });
}

bool QuindleRuntime::build(const QuindleDocument& doc, Program& program, Diag& diag) {
  const QuindleTrigger* const trigger = doc.runTrigger();
  if (!trigger) {
    diag.error(refusal::nothingToRun, doc.name);
    return false;
  }
  program.revision = doc.revision;
  objectCounter_ = 0;
  objectNames_.clear();

  const ParamIndex params(doc);
  std::string start;
  if (const std::vector<const QuindleStep*> selects = selectsIn(trigger->steps); !selects.empty()) {
    if (brushPinned_ || mentionsBrush(selects, params)) {
      start = findBrush(diag);
      if (start.empty()) return false;
    } else {
      diag.note(
          "This Quindle names no region, so it works on the whole of whatever it is given rather than on "
          "a brushed area.",
          doc.name);
    }
  }
  return ProgramCompiler(*this, doc, params, start, program, diag).compileBody(trigger->steps);
}

} // namespace Zamt
