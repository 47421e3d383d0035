#include "quindle/core/commaList.h"
#include "quindle/plan/evaluateQuindleExpr.h"
#include "quindle/runtime/Run.h"

#include <algorithm>
#include <iterator>

namespace Zamt {

namespace {

/// How many Quindles may wait for a nested run when another starts one, exclusive. Nested runs are the only
/// recursion whose depth a file decides; no sensible collection comes near this.
constexpr std::size_t maxWaitingRuns = 16;

std::string quotedRun(const std::string& caller, const std::string& target) {
  return "\"" + caller + "\" runs \"" + target + "\"";
}

std::string parameterList(const QuindleDocument& doc) {
  if (doc.params.empty()) return "none at all.";
  return commaList(doc.params, &QuindleParam::name) + ".";
}

} // namespace

// NOLINTNEXTLINE(misc-no-recursion): `mayNest` holds nested runs to a fixed depth.
bool QuindleRuntime::Run::runNested(const RunStep& step) {
  QuindleDocument nested;
  Args nestedArgs;
  if (!resolveNested(step, nested) || !mayNest(nested) || !nestedArguments(step, nested, nestedArgs))
    return false;

  QuindleRunResult inner;
  if (!Run(*this, nested, nestedArgs, inner).perform())
    diag_.note("This happened while \"" + doc_.name + "\" was running \"" + nested.name + "\".", doc_.name);
  std::move(inner.report.begin(), inner.report.end(), std::back_inserter(result_.report));
  addSettled(inner.settled);
  return inner.ok;
}

bool QuindleRuntime::Run::resolveNested(const RunStep& step, QuindleDocument& nested) {
  const std::string runs = quotedRun(doc_.name, step.name);
  if (!runtime_.resolver) return fail(runs + ", but nothing here knows how to find another Quindle by name.");
  std::string why;
  if (runtime_.resolver(step.name, nested, why)) return true;
  return fail(runs +
              (why.empty() ? ", and there is no Quindle of that name." : ", which cannot be run: " + why));
}

/// The runs that wait for this one, outermost first.
std::vector<const QuindleRuntime::Run*> QuindleRuntime::Run::waiting() const {
  std::vector<const Run*> runs;
  for (const Run* run = caller_; run; run = run->caller_) runs.push_back(run);
  std::reverse(runs.begin(), runs.end());
  return runs;
}

/// Whether this may run `nested` with the runs that wait. It is not among them itself, so a Quindle that runs
/// itself is found out one level down.
bool QuindleRuntime::Run::mayNest(const QuindleDocument& nested) {
  const std::vector<const Run*> runs = waiting();
  std::string chain;
  bool goesRound = false;
  for (const Run* const run : runs) {
    chain += "\"" + run->doc_.name + "\" runs ";
    goesRound = goesRound || run->doc_.name == nested.name;
  }
  if (goesRound) return fail(chain + quotedRun(doc_.name, nested.name) + " again, which would never stop.");
  if (runs.size() < maxWaitingRuns) return true;
  return fail("Quindles are running one another more than " + std::to_string(maxWaitingRuns) +
              " deep, starting at \"" + runs.front()->doc_.name + "\". Something is almost certainly wrong.");
}

/// The values for a nested run: those written in the step, worked out where the caller stands, and what the
/// application supplied to the caller under the name of a parameter that asks the application too.
bool QuindleRuntime::Run::nestedArguments(const RunStep& step, const QuindleDocument& nested,
                                          Args& nestedArgs) {
  for (std::size_t i = 0; i < step.args.size(); ++i) {
    if (i >= step.argNames.size() || step.argNames[i].empty())
      return fail("The arguments of a \"run\" step have to be named, as  run \"" + step.name +
                  "\"(margin: 0.5).");
    const std::string& name = step.argNames[i];
    if (!nested.findParam(name))
      return fail("\"" + step.name + "\" has no parameter called \"" + name + "\". It takes " +
                  parameterList(nested));
    QuindleValue value;
    if (!evaluateQuindleExpr(step.args[i], doc_, args_, lets_, value, diag_)) return false;
    nestedArgs[name] = value.toPlainText();
  }
  for (const QuindleParam& param : nested.params) {
    if (param.defaultSource == QuindleParam::DefaultSource::Written) continue;
    if (const auto supplied = args_.find(param.name); supplied != args_.end()) nestedArgs.insert(*supplied);
  }
  return true;
}

} // namespace Zamt
