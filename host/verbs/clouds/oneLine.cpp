#include "host/verbs/clouds/oneLine.h"

#include "host/session/checkValues.h"
#include "host/session/quindleOfCondition.h"
#include "host/session/selectClouds.h"
#include "host/verbs/clouds/Failures.h"
#include "host/verbs/clouds/runJob.h"
#include "host/verbs/options.h"
#include "host/verbs/texts.h"
#include "quindle/text/writeQuindle.h"

#include <fmt/format.h>

#include <utility>

namespace Zamt::Host {

namespace {

Option conditionArgument() {
  return {.name = "condition",
          .help =
              "Which points, as a \"select\" says it, in quotes of the shell. See \"quindle conditions\".",
          .placeholder = "CONDITION",
          .argument = true,
          .required = true};
}

Part quindlePart(const QuindleDocument& document) {
  return {{}, [text = writeQuindle(document)] { return text; }, {}, {}};
}

std::string selectedText(const Selected& selected) {
  if (!selected.ok) return selected.cloud + '\n';
  const std::string written = selected.output.empty() ? "" : ", written to " + selected.output;
  return fmt::format("{}: {} of {}{}\n", selected.cloud, grouped(selected.kept),
                     countOf(selected.points, "point"), written);
}

Data selectedData(const Selected& selected) {
  return Fields{{"file", selected.cloud},
                {"ok", selected.ok},
                {"points", selected.points},
                {"counted", selected.kept},
                {"output", selected.output}};
}

/// What came of all clouds.
struct Total {
  std::vector<Selected> clouds;
  std::uint64_t points = 0;
  std::uint64_t kept = 0;
  std::uint64_t good = 0; ///< Of the clouds.
  Failures failures;

  void add(Selected selected, const Diag& said) {
    if (!selected.ok) failures.add(selected.failure, selected.cloud, said);
    points += selected.points;
    kept += selected.kept;
    good += selected.ok ? 1 : 0;
    clouds.push_back(std::move(selected));
  }
};

/// Of one cloud its own line says it all.
std::string totalText(const Total& total) {
  if (total.clouds.empty()) return {};
  if (total.clouds.size() == 1) return selectedText(total.clouds[0]);
  return fmt::format("in all: {} of {} in {}\n", grouped(total.kept), countOf(total.points, "point"),
                     countOf(total.good, "cloud")) +
         total.failures.text();
}

Data totalData(const Total& total) {
  return Fields{{"clouds", Data::list(total.clouds, selectedData)},
                {"points", total.points},
                {"counted", total.kept},
                {"failures", total.failures.data()}};
}

} // namespace

std::vector<Option> oneLineOptions(std::vector<Option> between, std::vector<Option> more) {
  std::vector<Option> options{conditionArgument()};
  for (Option& option : between) options.push_back(std::move(option));
  for (Option& option : cloudOptions()) {
    option.required = false;
    options.push_back(std::move(option));
  }
  for (Option& option : more) options.push_back(std::move(option));
  options.push_back({.name = "quindle",
                     .kind = Option::Kind::Flag,
                     .help = "Print the Quindle that this is, for a file of your own, and do nothing else.",
                     .excludes = {"json"}});
  return options;
}

bool readOneLine(const Request& request, const std::string& className, const Context& context, Job& job,
                 Answer& answer) {
  const std::string& condition = request.text("condition");
  Diag diag;
  std::string problem;
  const bool good = quindleOfCondition(condition, className, job.document, diag);
  const bool wanted = request.flag("quindle");
  if (good && !wanted && request.texts("cloud").empty())
    problem = "No cloud is named. Write the clouds behind, or --quindle for the Quindle alone.";
  if (!problem.empty() || (good && !wanted && !readJob(request, context, job, problem))) {
    answer = refused(Status::Usage, problem);
    return false;
  }
  if (!good) answer.status = Status::Failed;
  if (good && !wanted && !checkValues(job.document, job.values, diag)) {
    answer = answerOf({std::move(diag), {}, {}, {}});
    return false;
  }
  for (const Diag::Entry& entry : diag.entries) job.told.insert(entry.message);
  if (!diag.entries.empty()) context.deliver(answer, {std::move(diag), {}, {}, {}, condition});
  if (good && wanted) context.deliver(answer, quindlePart(job.document));
  return good && !wanted;
}

Answer selectPoints(const Job& job, const Context& context, Answer answer) {
  Total total;
  Diag last;
  const bool several = job.clouds.size() > 1;
  const auto finished = [&](Selected selected, Diag said) {
    if (!selected.ok) answer.status = Status::Failed;
    const std::string text = selectedText(selected);
    const std::string about = selected.cloud;
    total.add(std::move(selected), said);
    if (several)
      context.deliver(answer, {std::move(said), [text] { return text; }, {}, {}, {}, about});
    else
      last = std::move(said);
  };
  std::string problem;
  if (!selectClouds(job, {context.stop, context.progress, finished, noticeTo(answer, context)}, problem))
    return refused(Status::Usage, problem);
  if (context.stop.requested()) answer.status = Status::Failed;
  Part all = partOf(std::move(last), std::move(total), totalText, totalData);
  if (!several) all.about = job.clouds[0].file;
  context.deliver(answer, std::move(all));
  return answer;
}

} // namespace Zamt::Host
