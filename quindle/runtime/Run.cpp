#include "quindle/runtime/Run.h"

#include "quindle/core/Guarded.h"
#include "quindle/plan/ParamIndex.h"
#include "quindle/plan/compileClassify.h"
#include "quindle/plan/evaluateQuindleExpr.h"
#include "quindle/plan/parameterValue.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace Zamt {

namespace {

/// What a slot holds; empty when there is nothing to read, which is no fault.
std::string readQuietly(QuindleOps& ops, const std::string& object, const std::string& slot) {
  std::string value;
  Diag unread;
  if (ops.getParam(object, slot, value, unread)) return value;
  passOnLackOfMemory(unread);
  return {};
}

} // namespace

QuindleRuntime::Run::Run(QuindleRuntime& runtime, const QuindleDocument& doc, const Args& args, bool preview,
                         QuindleRunResult& result, Diag& diag)
    : runtime_(runtime),
      caller_(nullptr),
      doc_(doc),
      args_(args),
      preview_(preview),
      result_(result),
      diag_(diag) {}

QuindleRuntime::Run::Run(const Run& caller, const QuindleDocument& doc, const Args& args,
                         QuindleRunResult& result)
    : runtime_(caller.runtime_),
      caller_(&caller),
      doc_(doc),
      args_(args),
      preview_(caller.preview_),
      result_(result),
      diag_(caller.diag_) {}

// A run comes back here through the runs nested in it, which `mayNest` holds to a fixed depth.
// NOLINTBEGIN(misc-no-recursion)
bool QuindleRuntime::Run::perform() {
  result_ = {};
  result_.preview = preview_;
  // Of a nested run too, so that the lines it has made reach its caller.
  return guarded(diag_, false, [this] { return performAll(); });
}

bool QuindleRuntime::Run::performAll() {
  runtime_.detachPreview();
  if (!doc_.enabled) {
    diag_.warning("\"" + doc_.name + "\" is switched off.", doc_.name);
    return false;
  }
  program_ = runtime_.programFor(doc_, result_, diag_);
  if (!program_ || !bind() || !walk() || !checkSelection() || !checkClass()) return false;
  if (preview_) runtime_.attachPreview(doc_, args_, counter_, diag_);
  return result_.ok = true;
}

bool QuindleRuntime::Run::walk() {
  for (const RunStep& step : program_->steps) {
    bool holds = true;
    if (step.guard.kind != QuindleExpr::Kind::None &&
        !evaluateQuindleCondition(step.guard, doc_, args_, lets_, holds, diag_))
      return false;
    if (holds && !take(step)) return false;
  }
  return true;
}

bool QuindleRuntime::Run::take(const RunStep& step) {
  switch (step.kind) {
  case RunStep::Kind::Fire: return fire(step);
  case RunStep::Kind::Report: report(step); return true;
  case RunStep::Kind::Let: return let(step);
  case RunStep::Kind::Run: return runNested(step);
  }
  return true;
}
// NOLINTEND(misc-no-recursion)

/// Writes this run's parameter values into the objects. One that fails does not hide the others.
bool QuindleRuntime::Run::bind() {
  bool ok = true;
  const ParamIndex params(doc_);
  QuindleOps& ops = runtime_.ops_;
  for (const QuindleBinding& binding : program_->bindings) {
    const QuindleParam* const param = params.find(binding.param);
    const std::optional<std::string> value = parameterValue(binding.param, param, args_);
    const bool bound = !value            ? fail(noValueFor(binding.param, param))
                       : binding.connect ? ops.connect(binding.object, binding.slot, *value, {}, diag_)
                                         : ops.setParam(binding.object, binding.slot, *value, diag_);
    ok = ok && bound;
  }
  return ok;
}

bool QuindleRuntime::Run::fire(const RunStep& step) {
  if (preview_ && step.writes) return true;
  if (!runtime_.ops_.fireAction(step.object, step.action, diag_)) return false;
  if (step.writes || step.counts) counter_ = step.object;
  // At once, so that the effect is in place before the next step looks at it.
  addSettled(runtime_.ops_.settle());
  return true;
}

/// A scene may answer any numbers, whose sum need not be one.
void QuindleRuntime::Run::addSettled(int pieces) {
  constexpr std::int64_t least = std::numeric_limits<int>::min();
  constexpr std::int64_t most = std::numeric_limits<int>::max();
  result_.settled = static_cast<int>(std::clamp(std::int64_t{result_.settled} + pieces, least, most));
}

bool QuindleRuntime::Run::let(const RunStep& step) {
  QuindleValue value;
  if (!evaluateQuindleExpr(step.value, doc_, args_, lets_, value, diag_)) return false;
  lets_[step.name] = std::move(value);
  return true;
}

void QuindleRuntime::Run::report(const RunStep& step) {
  result_.report.push_back(runtime_.filledIn(step.text, doc_, args_, lets_, counter_, preview_, diag_));
}

/// Whether the selection could be worked out at all. That nothing matched is no fault.
bool QuindleRuntime::Run::checkSelection() {
  if (counter_.empty()) return true;
  const std::string problem = readQuietly(runtime_.ops_, counter_, sceneWords::problemSlot);
  if (problem.empty()) return true;
  fail("Nothing was selected, and not because nothing matched: " + problem);
  noteStatuses();
  return false;
}

/// What the objects around the editor say of themselves, each once: the one that failed is among them.
void QuindleRuntime::Run::noteStatuses() {
  std::set<std::string_view> asked{counter_};
  for (const QuindleBinding& binding : program_->bindings) {
    if (!asked.insert(binding.object).second) continue;
    const std::string status = runtime_.ops_.statusOf(binding.object);
    if (!status.empty()) diag_.note("\"" + binding.object + "\" says: " + status, doc_.name);
  }
}

/// Whether the editor still knows which class to put the points into.
bool QuindleRuntime::Run::checkClass() {
  if (program_->editorObject.empty()) return true;
  const std::string labels = readQuietly(runtime_.ops_, program_->editorObject, sceneWords::labelsSlot);
  if (labels.empty() || assignedClassOf(labels) >= 0) return true;
  return fail("The label set of \"" + program_->editorObject +
              "\" names no class to put the points into, so this cannot have changed anything. Something "
              "else is driving that label set: detach it, and let this Quindle keep the one it plans for "
              "itself.");
}

bool QuindleRuntime::Run::fail(const std::string& message) {
  diag_.error(message, doc_.name);
  return false;
}

} // namespace Zamt
