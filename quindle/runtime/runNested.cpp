#include "quindle/plan/evaluateQuindleExpr.h"
#include "quindle/runtime/QuindleRuntime.h"

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
  std::string list;
  for (const QuindleParam& param : doc.params) list += (list.empty() ? "" : ", ") + param.name;
  return list + ".";
}

/// The values for a nested run: those written in the step, worked out where the caller stands, and what the
/// application supplied to the caller under the name of a parameter that asks the application too.
bool nestedArguments(const QuindleRuntime::RunStep& step, const QuindleDocument& doc,
                     const QuindleDocument& nested, const std::map<std::string, std::string>& args,
                     const std::map<std::string, QuindleValue>& lets,
                     std::map<std::string, std::string>& nestedArgs, Diag& diag) {
  for (std::size_t i = 0; i < step.args.size(); ++i) {
    if (i >= step.argNames.size() || step.argNames[i].empty()) {
      diag.error("The arguments of a \"run\" step have to be named, as  run \"" + step.name +
                     "\"(margin: 0.5).",
                 doc.name);
      return false;
    }
    const std::string& name = step.argNames[i];
    if (!nested.findParam(name)) {
      diag.error("\"" + step.name + "\" has no parameter called \"" + name + "\". It takes " +
                     parameterList(nested),
                 doc.name);
      return false;
    }
    QuindleValue value;
    if (!evaluateQuindleExpr(step.args[i], doc, args, lets, value, diag)) return false;
    nestedArgs[name] = value.toPlainText();
  }
  for (const QuindleParam& param : nested.params) {
    if (param.defaultSource == QuindleParam::DefaultSource::Written) continue;
    if (const auto supplied = args.find(param.name); supplied != args.end()) nestedArgs.insert(*supplied);
  }
  return true;
}

} // namespace

bool QuindleRuntime::resolveNested(const RunStep& step, const QuindleDocument& doc, QuindleDocument& nested,
                                   Diag& diag) const {
  const std::string runs = quotedRun(doc.name, step.name);
  if (!resolver) {
    diag.error(runs + ", but nothing here knows how to find another Quindle by name.", doc.name);
    return false;
  }
  std::string why;
  if (resolver(step.name, nested, why)) return true;
  if (why.empty())
    diag.error(runs + ", and there is no Quindle of that name.", doc.name);
  else
    diag.error(runs + ", which cannot be run: " + why, doc.name);
  return false;
}

/// Whether `doc` may run `nested` with the runs that are under way. The outermost Quindle is on the stack
/// only from its first nested run on, so one that runs itself is found out one level down.
bool QuindleRuntime::mayNest(const QuindleDocument& doc, const QuindleDocument& nested, Diag& diag) const {
  if (std::find(runStack.begin(), runStack.end(), nested.name) != runStack.end()) {
    std::string chain;
    for (const std::string& waiting : runStack) chain += "\"" + waiting + "\" runs ";
    diag.error(chain + quotedRun(doc.name, nested.name) + " again, which would never stop.", doc.name);
    return false;
  }
  if (runStack.size() >= maxWaitingRuns) {
    diag.error("Quindles are running one another more than " + std::to_string(maxWaitingRuns) +
                   " deep, starting at \"" + runStack.front() + "\". Something is almost certainly wrong.",
               doc.name);
    return false;
  }
  return true;
}

// NOLINTNEXTLINE(misc-no-recursion): `mayNest` holds nested runs to a fixed depth.
bool QuindleRuntime::runNested(const RunStep& step, const QuindleDocument& doc,
                               const std::map<std::string, std::string>& args,
                               const std::map<std::string, QuindleValue>& lets, bool preview,
                               QuindleRunResult& result, Diag& diag) {
  QuindleDocument nested;
  std::map<std::string, std::string> nestedArgs;
  if (!resolveNested(step, doc, nested, diag) || !mayNest(doc, nested, diag) ||
      !nestedArguments(step, doc, nested, args, lets, nestedArgs, diag))
    return false;

  runStack.push_back(doc.name);
  QuindleRunResult inner;
  run(nested, nestedArgs, preview, inner, diag);
  runStack.pop_back();

  if (!inner.ok)
    diag.note("This happened while \"" + doc.name + "\" was running \"" + nested.name + "\".", doc.name);
  std::move(inner.report.begin(), inner.report.end(), std::back_inserter(result.report));
  result.settled += inner.settled;
  return inner.ok;
}

} // namespace Zamt
