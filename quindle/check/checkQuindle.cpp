#include "quindle/check/checkQuindle.h"

#include "quindle/check/Findings.h"
#include "quindle/check/parameterChecks.h"
#include "quindle/check/stepChecks.h"
#include "quindle/check/unguarded.h"

#include <algorithm>

namespace Zamt {

namespace {

void checkTexts(const QuindleDocument& doc, Findings& findings) {
  if (doc.name.empty())
    findings.error("This Quindle has no name, so it cannot be listed or run by name.", Findings::noLine);
  if (doc.description.empty())
    findings.warning("This Quindle has no description. That text is what the library, the block palette and "
                     "the AI use to tell the user what it does.",
                     Findings::noLine);
}

void checkTrigger(const QuindleTrigger& trigger, StepChecks& steps, Findings& findings) {
  if (trigger.kind == QuindleTrigger::Kind::Key && trigger.key.empty())
    findings.error("This \"on key\" trigger names no key.", trigger.line);
  if (trigger.steps.empty()) findings.warning("This trigger does nothing.", trigger.line);
  steps.check(trigger);
}

void checkTriggers(const QuindleDocument& doc, Findings& findings) {
  StepChecks steps(doc, findings);
  for (const QuindleTrigger& trigger : doc.triggers) checkTrigger(trigger, steps, findings);
  const auto runs =
      std::count_if(doc.triggers.begin(), doc.triggers.end(),
                    [](const QuindleTrigger& trigger) { return trigger.kind == QuindleTrigger::Kind::Run; });
  if (runs > 1)
    findings.error("There is more than one \"on run\" block, and nothing decides which of them runs.",
                   Findings::noLine);
  if (doc.triggers.empty())
    findings.warning("This Quindle has no trigger, so nothing will ever run it.", Findings::noLine);
}

void checkShortcut(const QuindleDocument& doc, Findings& findings) {
  if (doc.shortcut.empty()) return;
  for (const QuindleTrigger& trigger : doc.triggers)
    if (trigger.kind == QuindleTrigger::Kind::Key && trigger.key != doc.shortcut)
      findings.warning("The shortcut is \"" + doc.shortcut + "\" but there is also an \"on key\" for \"" +
                           trigger.key + "\". Both will be bound, which is probably not what was meant.",
                       trigger.line);
}

} // namespace

bool Unguarded::checkQuindle(const QuindleDocument& doc, Diag& diag) {
  const std::uint64_t errorsBefore = diag.errorCount;
  Findings findings(doc, diag);
  checkTexts(doc, findings);
  checkParameters(doc, findings);
  checkTriggers(doc, findings);
  checkShortcut(doc, findings);
  return diag.errorCount == errorsBefore;
}

bool checkQuindle(const QuindleDocument& doc, Diag& diag) {
  return guarded(diag, false, [&] { return Unguarded::checkQuindle(doc, diag); });
}

} // namespace Zamt
