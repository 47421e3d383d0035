#include "quindle/core/NestedSteps.h"
#include "quindle/runtime/ProgramCompiler.h"
#include "quindle/runtime/QuindleRuntime.h"

#include <set>
#include <string_view>

namespace Zamt {

namespace {

/// The parameters that stand for the region which the user paints. Of several of one name the first counts.
std::set<std::string_view> brushParams(const QuindleDocument& doc) {
  std::set<std::string_view> seen;
  std::set<std::string_view> brushes;
  for (const QuindleParam& param : doc.params)
    if (seen.insert(param.name).second && param.defaultSource == QuindleParam::DefaultSource::Brush)
      brushes.insert(param.name);
  return brushes;
}

/// Every "select" of the steps and of the blocks of their "if"s; those of a loop do not count.
std::vector<const QuindleStep*> selectsIn(const std::vector<QuindleStep>& steps) {
  std::vector<const QuindleStep*> found;
  eachStepWithin(steps, compiledSteps, [&found](const QuindleStep& step) {
    if (step.kind == QuindleStep::Kind::Select) found.push_back(&step);
  });
  return found;
}

bool mentions(const QuindleExpr& condition, const std::set<std::string_view>& names) {
  if (names.empty()) return false;
  bool found = false;
  tree::each(
      condition, [](const QuindleExpr& node) -> const auto& { return node.operands; },
      [&](const QuindleExpr& node) {
        if (node.kind == QuindleExpr::Kind::Reference && names.contains(node.name)) found = true;
      });
  return found;
}

bool mentionsBrush(const QuindleDocument& doc, const std::vector<const QuindleStep*>& selects) {
  const std::set<std::string_view> names = brushParams(doc);
  for (const QuindleStep* const select : selects)
    if (mentions(select->condition, names)) return true;
  return false;
}

} // namespace

bool QuindleRuntime::compile(const QuindleDocument& doc, Program& program, Diag& diag) {
  const QuindleTrigger* const trigger = doc.runTrigger();
  if (!trigger) {
    diag.error("This Quindle has nothing to run.", doc.name);
    return false;
  }
  program.revision = doc.revision;
  objectCounter = 0;
  objectNames.clear();

  std::string start;
  if (const std::vector<const QuindleStep*> selects = selectsIn(trigger->steps); !selects.empty()) {
    if (brushPinned || mentionsBrush(doc, selects)) {
      start = ensureBrushObject(diag);
      if (start.empty()) return false;
    } else {
      diag.note(
          "This Quindle names no region, so it works on the whole of whatever it is given rather than on "
          "a brushed area.",
          doc.name);
    }
  }
  return ProgramCompiler(*this, doc, start, program, diag).compileBody(trigger->steps);
}

} // namespace Zamt
