#include "quindle/check/advice/stepAdvice.h"

#include "quindle/core/Refusals.h"
#include "quindle/text/StepKeyword.h"

#include <string>

namespace Zamt {

namespace {

using Kind = QuindleStep::Kind;

bool namesMember(const std::string& target) { return target.find('.') != std::string::npos; }

/// Whether compilation refuses the step whatever the scene is; says why.
bool isRefused(const QuindleStep& step, Advisor& advisor) {
  if (step.kind == Kind::Set && step.value.kind != QuindleExpr::Kind::Literal) {
    advisor.warn(step, refusal::onlyWrittenOut,
                 "Write the number or the text itself. Only conditions of a \"select\" and arguments of a "
                 "\"run\" take parameters.");
    return true;
  }
  if (step.kind == Kind::Create || namesMember(step.name)) return false;
  advisor.warn(step, step.kind == Kind::Call ? refusal::noAction(step.name) : refusal::noSlot(step.name));
  return true;
}

void adviseOnSource(const QuindleStep& step, Advisor& advisor) {
  const std::string object = step.source.substr(0, step.source.rfind('.'));
  if (!advisor.findParam(object)) return;
  advisor.warn(step, "\"connect\" takes " + inQuotes(object) +
                         " for the name of an object of the scene, not for the parameter of that name. Write "
                         "the object's own name, as it is in the scene.");
}

} // namespace

void adviseOnObjects(const QuindleStep& step, std::int32_t ifLine, Advisor& advisor) {
  if (isRefused(step, advisor)) return;
  if (step.kind == Kind::Connect) adviseOnSource(step, advisor);
  if (step.kind == Kind::Call || ifLine == 0) return;
  advisor.warn(step,
               "The " + inQuotes(stepKeyword(step.kind)) + " on line " + std::to_string(step.line) +
                   " acts whatever the \"if\" on line " + std::to_string(ifLine) +
                   " decides. Move it in front of the \"if\", or move the steps of the block to a Quindle "
                   "of their own and call that with \"run\".");
}

void adviseOnRefused(const QuindleStep& step, Advisor& advisor) {
  advisor.warn(step, refusal::cannotRunYet,
               step.kind == Kind::ForEach
                   ? "Write the steps once for each, or put them into a Quindle with a "
                     "parameter and write a \"run\" of it for each."
                   : "");
}

} // namespace Zamt
