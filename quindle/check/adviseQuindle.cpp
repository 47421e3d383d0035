#include "quindle/check/adviseQuindle.h"

#include "quindle/check/advice/Advisor.h"
#include "quindle/check/advice/GuardAdvice.h"
#include "quindle/check/advice/NarrowingAdvice.h"
#include "quindle/check/advice/ReportAdvice.h"
#include "quindle/check/advice/ValueAdvice.h"
#include "quindle/check/advice/classAdvice.h"
#include "quindle/check/advice/conditionAdvice.h"
#include "quindle/check/advice/parameterAdvice.h"
#include "quindle/check/advice/stepAdvice.h"
#include "quindle/core/Guarded.h"
#include "quindle/core/NestedSteps.h"
#include "quindle/core/Refusals.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Zamt {

namespace {

/// The one walk over the steps, which hands each to whoever advises on its subject.
class AdviceWalk {
public:
  explicit AdviceWalk(Advisor& advisor)
      : advisor_(advisor),
        narrowing_(advisor),
        values_(advisor),
        reports_(advisor, values_),
        classes_(advisor),
        guards_(advisor) {}

  void walk(const QuindleTrigger& trigger) {
    guards_.start(trigger);
    narrowing_.start();
    values_.start();
    reports_.start();
    bodies_.assign(1, {});
    eachStep(
        trigger.steps, [this](const QuindleStep& step, const StepPlace& place) { enter(step, place); },
        [this](const QuindleStep& step) {
          if (hasBlocks(step.kind)) closeBlocks(step);
        });
  }

private:
  /// The trigger's steps, or those of an "if" or a loop; of an "if" one of its two blocks after the other.
  struct Body {
    std::int32_t ifLine = 0;           ///< Of the innermost "if" around the steps; 0 for none.
    std::optional<bool> decided;       ///< What the condition around them is worth, if that is known.
    std::vector<std::string> selected; ///< The classes that the latest "select" in the block keeps.
  };

  void enter(const QuindleStep& step, const StepPlace& place) {
    if (startsElse(place)) startElse(*place.parent);
    guards_.step(step);
    advise(step);
  }

  void advise(const QuindleStep& step) {
    using Kind = QuindleStep::Kind;
    switch (step.kind) {
    case Kind::Let: values_.let(step); break;
    case Kind::Run: values_.run(step); break;
    case Kind::Select: select(step); break;
    case Kind::Classify: classify(step); break;
    case Kind::Report: reports_.report(step); break;
    case Kind::Call:
      reports_.call(step);
      adviseOnObjects(step, bodies_.back().ifLine, advisor_);
      break;
    case Kind::Create:
    case Kind::Set:
    case Kind::Connect: adviseOnObjects(step, bodies_.back().ifLine, advisor_); break;
    case Kind::If:
      openBlocks({step.line, values_.decide(step), {}});
      guards_.openBlocks(step);
      break;
    case Kind::ForEach:
      adviseOnRefused(step, advisor_);
      values_.loop(step);
      openBlocks({bodies_.back().ifLine, {}, {}});
      break;
    case Kind::Unparsed: adviseOnRefused(step, advisor_); break;
    case Kind::Comment: break;
    }
  }

  void select(const QuindleStep& step) {
    std::optional<SelectedPoints> points = adviseOnCondition(step.condition, advisor_);
    if (!points) return;
    bodies_.back().selected = std::move(points->classes);
    narrowing_.select(step, std::move(points->conditions));
  }

  void classify(const QuindleStep& step) {
    classes_.classify(step, bodies_.back().selected);
    narrowing_.classify(step);
    reports_.classify(step);
  }

  void openBlocks(Body body) {
    bodies_.push_back(std::move(body));
    narrowing_.openBlocks();
    reports_.openBlocks();
  }

  void startElse(const QuindleStep& owner) {
    guards_.startElse(owner);
    bodies_.back().selected.clear();
    narrowing_.startElse();
    reports_.startElse();
  }

  void closeBlocks(const QuindleStep& step) {
    if (step.kind == QuindleStep::Kind::If) guards_.closeBlocks();
    narrowing_.closeBlocks();
    reports_.closeBlocks(bodies_.back().decided);
    bodies_.pop_back();
  }

  Advisor& advisor_;
  NarrowingAdvice narrowing_;
  ValueAdvice values_;
  ReportAdvice reports_;
  ClassAdvice classes_;
  GuardAdvice guards_;
  std::vector<Body> bodies_;
};

void adviseOnTriggers(Advisor& advisor) {
  const QuindleDocument& doc = advisor.document();
  if (!doc.triggers.empty() && !doc.runTrigger())
    advisor.warn(QuindleStep(), refusal::nothingToRun,
                 "Nothing fires \"on tile.enter\" and \"on load\" yet. Write \"on run\" around the steps.");
  AdviceWalk walk(advisor);
  for (const QuindleTrigger& trigger : doc.triggers) walk.walk(trigger);
}

} // namespace

void adviseQuindle(const QuindleDocument& doc, Diag& diag) {
  guarded(diag, [&] {
    Advisor advisor(doc, diag);
    adviseOnParameters(advisor);
    adviseOnTriggers(advisor);
  });
}

} // namespace Zamt
