#include "quindle/runtime/ProgramWalk.h"

#include "quindle/plan/compileClassify.h"
#include "quindle/plan/evaluateQuindleExpr.h"

#include <set>
#include <string_view>
#include <utility>

namespace Zamt {

namespace {

/// What a slot holds; empty when there is nothing to read, which is no fault.
std::string readQuietly(QuindleOps& ops, const std::string& object, const std::string& slot) {
  std::string value;
  Diag unread;
  return ops.getParam(object, slot, value, unread) ? value : std::string();
}

} // namespace

// A run comes back here through the runs nested in it, which `mayNest` holds to a fixed depth.
// NOLINTBEGIN(misc-no-recursion)
bool QuindleRuntime::ProgramWalk::walk() {
  for (const RunStep& step : program.steps) {
    bool holds = true;
    if (step.guard.kind != QuindleExpr::Kind::None &&
        !evaluateQuindleCondition(step.guard, doc, args, lets, holds, diag))
      return false;
    if (holds && !take(step)) return false;
  }
  return true;
}

bool QuindleRuntime::ProgramWalk::take(const RunStep& step) {
  switch (step.kind) {
  case RunStep::Kind::Fire: return fire(step);
  case RunStep::Kind::Report:
    result.report.push_back(runtime.expandReport(step.text, doc, args, lets, counter, preview, diag));
    return true;
  case RunStep::Kind::Let: {
    QuindleValue value;
    if (!evaluateQuindleExpr(step.value, doc, args, lets, value, diag)) return false;
    lets[step.name] = std::move(value);
    return true;
  }
  case RunStep::Kind::Run: return runtime.runNested(step, doc, args, lets, preview, result, diag);
  }
  return true;
}
// NOLINTEND(misc-no-recursion)

bool QuindleRuntime::ProgramWalk::fire(const RunStep& step) {
  if (preview && step.writes) return true;
  if (!runtime.ops.fireAction(step.object, step.action, diag)) return false;
  if (step.writes || step.counts) counter = step.object;
  // At once, so that the effect is in place before the next step looks at it.
  result.settled += runtime.ops.settle();
  return true;
}

bool QuindleRuntime::ProgramWalk::checkSelection() {
  if (counter.empty()) return true;
  const std::string problem = readQuietly(runtime.ops, counter, sceneWords::problemSlot);
  if (problem.empty()) return true;
  diag.error("Nothing was selected, and not because nothing matched: " + problem, doc.name);
  noteStatuses();
  return false;
}

/// What the objects around the editor say of themselves, each once: the one that failed is among them.
void QuindleRuntime::ProgramWalk::noteStatuses() {
  std::set<std::string_view> asked{counter};
  for (const QuindleBinding& binding : program.bindings) {
    if (!asked.insert(binding.object).second) continue;
    const std::string status = runtime.ops.statusOf(binding.object);
    if (!status.empty()) diag.note("\"" + binding.object + "\" says: " + status, doc.name);
  }
}

bool QuindleRuntime::ProgramWalk::checkClass() {
  if (program.editorObject.empty()) return true;
  const std::string labels = readQuietly(runtime.ops, program.editorObject, sceneWords::labelsSlot);
  if (labels.empty() || assignedClassOf(labels) >= 0) return true;
  diag.error("The label set of \"" + program.editorObject +
                 "\" names no class to put the points into, so this cannot have changed anything. Something "
                 "else is driving that label set: detach it, and let this Quindle keep the one it plans for "
                 "itself.",
             doc.name);
  return false;
}

} // namespace Zamt
