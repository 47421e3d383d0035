#include "quindle/runtime/ProgramCompiler.h"

#include "quindle/core/Refusals.h"
#include "quindle/plan/compileClassify.h"
#include "quindle/plan/compileIndexedSelect.h"

#include <optional>
#include <utility>

namespace Zamt {

namespace {

/// An object and what stands behind the last dot: a slot or an action.
struct Target {
  std::string object;
  std::string member;
};

std::optional<Target> splitTarget(const std::string& text) {
  const std::size_t dot = text.rfind('.');
  if (dot == std::string::npos) return std::nullopt;
  return Target{text.substr(0, dot), text.substr(dot + 1)};
}

} // namespace

QuindleRuntime::ProgramCompiler::ProgramCompiler(QuindleRuntime& runtime, const QuindleDocument& doc,
                                                 const ParamIndex& params, const std::string& start,
                                                 Program& program, Diag& diag)
    : runtime_(runtime),
      doc_(doc),
      params_(params),
      program_(program),
      diag_(diag),
      prefix_(sceneWords::ownPrefix + quindleIdentifier(doc.name) + "_"),
      chain_(start) {}

bool QuindleRuntime::ProgramCompiler::compileBody(const std::vector<QuindleStep>& steps) {
  bool ok = true;
  const auto enter = [&](const QuindleStep& step, const StepPlace& place) {
    if (startsElse(place)) {
      closeBlock();
      openBlock(*place.parent, true);
    }
    if (step.kind == QuindleStep::Kind::If)
      openBlock(step, false);
    else if (!compileStep(step))
      ok = false;
  };
  const auto leave = [this](const QuindleStep& step) {
    if (step.kind == QuindleStep::Kind::If) closeBlock();
  };
  bodies_.emplace_back();
  eachStepWithin(steps, compiledSteps, enter, leave);
  return ok;
}

void QuindleRuntime::ProgramCompiler::openBlock(const QuindleStep& owner, bool isElse) {
  guards_.enter(owner.condition, isElse);
  bodies_.emplace_back();
}

void QuindleRuntime::ProgramCompiler::closeBlock() {
  guards_.leave();
  bodies_.pop_back();
}

bool QuindleRuntime::ProgramCompiler::compileStep(const QuindleStep& step) {
  if (guardsFull_) return true; // that was reported, and no program comes of it
  switch (step.kind) {
  case QuindleStep::Kind::Comment:
  case QuindleStep::Kind::If: return true;
  case QuindleStep::Kind::Let: return compileLet(step);
  case QuindleStep::Kind::Create: return compileCreate(step);
  case QuindleStep::Kind::Select: return compileSelectStep(step);
  case QuindleStep::Kind::Classify: return compileClassifyStep(step);
  case QuindleStep::Kind::Set: return compileSet(step);
  case QuindleStep::Kind::Connect: return compileConnect(step);
  case QuindleStep::Kind::Call: return compileCall(step);
  case QuindleStep::Kind::Report: return compileReport(step);
  case QuindleStep::Kind::Run: return compileRun(step);
  case QuindleStep::Kind::ForEach:
  case QuindleStep::Kind::Unparsed: break;
  }
  return fail(step, refusal::cannotRunYet);
}

bool QuindleRuntime::ProgramCompiler::compileCreate(const QuindleStep& step) {
  if (step.value.kind != QuindleExpr::Kind::Literal || step.value.value.textValue.empty())
    return fail(step, "This does not say what to make \"" + step.name +
                          "\" from. Write the creator as \"Category/Identifier\".");
  const std::string made = runtime_.ops_.create(step.value.value.textValue, prefix_ + step.name, diag_);
  if (made.empty()) return false;
  runtime_.objectNames_[step.name] = made;
  return true;
}

bool QuindleRuntime::ProgramCompiler::compileSelectStep(const QuindleStep& step) {
  Body& body = bodies_.back();
  if (!planPredicate(step.condition, body.plan, diag_, doc_.sourceFile)) return false;
  if (!compileIndexedSelect(body.plan, params_, runtime_.ops_, chain_, nextPrefix(), chain_,
                            program_.bindings, diag_))
    return false;
  body.selected = true;
  return true;
}

bool QuindleRuntime::ProgramCompiler::compileClassifyStep(const QuindleStep& step) {
  std::vector<std::string> classes;
  if (bodies_.back().selected) collectPlanClasses(bodies_.back().plan, classes);
  std::string editor;
  if (!compileClassify(step, classes, doc_, runtime_.ops_, chain_, nextPrefix(), editor, program_.bindings,
                       diag_))
    return false;
  program_.editorObject = editor;
  return appendFire(editor, sceneWords::unselectAllAction, false, false, step) &&
         appendFire(editor, sceneWords::selectAction, false, true, step) &&
         appendFire(editor, sceneWords::applyAction, true, false, step);
}

bool QuindleRuntime::ProgramCompiler::compileSet(const QuindleStep& step) {
  if (step.value.kind != QuindleExpr::Kind::Literal) return fail(step, refusal::onlyWrittenOut);
  const std::optional<Target> target = splitTarget(step.name);
  if (!target) return fail(step, refusal::noSlot(step.name));
  return runtime_.ops_.setParam(runtime_.objectNamed(target->object), target->member,
                                step.value.value.toPlainText(), diag_);
}

bool QuindleRuntime::ProgramCompiler::compileConnect(const QuindleStep& step) {
  const std::optional<Target> target = splitTarget(step.name);
  if (!target) return fail(step, refusal::noSlot(step.name));
  const Target source = splitTarget(step.source).value_or(Target{step.source, {}});
  return runtime_.ops_.connect(runtime_.objectNamed(target->object), target->member,
                               runtime_.objectNamed(source.object), source.member, diag_);
}

bool QuindleRuntime::ProgramCompiler::compileCall(const QuindleStep& step) {
  const std::optional<Target> target = splitTarget(step.name);
  if (!target) return fail(step, refusal::noAction(step.name));
  return appendFire(runtime_.objectNamed(target->object), target->member, true, false, step);
}

bool QuindleRuntime::ProgramCompiler::compileReport(const QuindleStep& step) {
  RunStep report;
  report.kind = RunStep::Kind::Report;
  report.text =
      step.value.kind == QuindleExpr::Kind::Literal ? step.value.value.toPlainText() : step.value.toSource();
  return append(std::move(report), step);
}

bool QuindleRuntime::ProgramCompiler::compileLet(const QuindleStep& step) {
  RunStep let;
  let.kind = RunStep::Kind::Let;
  let.name = step.name;
  let.value = step.value;
  return append(std::move(let), step);
}

bool QuindleRuntime::ProgramCompiler::compileRun(const QuindleStep& step) {
  RunStep nested;
  nested.kind = RunStep::Kind::Run;
  nested.name = step.name;
  nested.args = step.args;
  nested.argNames = step.argNames;
  return append(std::move(nested), step);
}

std::string QuindleRuntime::ProgramCompiler::nextPrefix() {
  return prefix_ + std::to_string(++runtime_.objectCounter_) + "_";
}

bool QuindleRuntime::ProgramCompiler::append(RunStep&& runStep, const QuindleStep& step) {
  if (!guards_.build(runStep.guard)) {
    guardsFull_ = true;
    return fail(step, refusal::guardsTooLarge);
  }
  program_.steps.push_back(std::move(runStep));
  return true;
}

bool QuindleRuntime::ProgramCompiler::appendFire(const std::string& object, const std::string& action,
                                                 bool writes, bool counts, const QuindleStep& step) {
  RunStep fire;
  fire.kind = RunStep::Kind::Fire;
  fire.object = object;
  fire.action = action;
  fire.writes = writes;
  fire.counts = counts;
  return append(std::move(fire), step);
}

bool QuindleRuntime::ProgramCompiler::fail(const QuindleStep& step, const std::string& message) {
  diag_.at(Diag::Severity::Error, message, doc_.sourceFile, step.line, 0);
  return false;
}

} // namespace Zamt
