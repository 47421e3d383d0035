#include "host/session/adviseOnText.h"
#include "host/verbs/options.h"
#include "host/verbs/texts.h"
#include "host/verbs/verbs.h"
#include "quindle/plan/diagnoseQuindle.h"
#include "quindle/text/parseQuindle.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace Zamt::Host {

namespace {

/// What the check of one Quindle came to.
struct Finding {
  std::string label;
  std::string name;
  std::uint64_t errors = 0;
  std::uint64_t warnings = 0;
};

std::string verdict(const Finding& finding) {
  if (finding.errors == 0 && finding.warnings == 0) return finding.label + ": no faults\n";
  return fmt::format("{}: {}, {}\n", finding.label, countOf(finding.errors, "error"),
                     countOf(finding.warnings, "warning"));
}

Data findingData(const Finding& finding) {
  return Fields{{"file", finding.label},
                {"name", finding.name},
                {"ok", finding.errors == 0},
                {"errors", finding.errors},
                {"warnings", finding.warnings}};
}

/// Of a text that can't be read there is nothing to advise on.
void diagnose(const QuindleSource& source, QuindleDocument& document, Diag& diag) {
  Diag said;
  if (diagnoseQuindle(source.text, source.label, document, diag) ||
      parseQuindle(source.text, source.label, document, said))
    adviseOnText(document, source.text, diag);
}

Part checkOne(const std::string& which, const Context& context) {
  Diag diag;
  QuindleDocument document;
  QuindleSource source;
  if (context.quindles.read(which, source, diag)) diagnose(source, document, diag);
  const auto warnings = std::count_if(diag.entries.begin(), diag.entries.end(), [](const Diag::Entry& entry) {
    return entry.severity == Diag::Severity::Warning;
  });
  Finding finding{source.label, document.name, diag.errorCount, static_cast<std::uint64_t>(warnings)};
  return partOf(std::move(diag), std::move(finding), verdict, findingData);
}

Answer check(const Request& request, const Context& context) {
  Answer answer;
  for (const std::string& which : request.texts("quindle")) {
    if (context.stop.requested()) break;
    Part part = checkOne(which, context);
    if (part.diag.errorCount != 0) answer.status = Status::Failed;
    context.deliver(answer, std::move(part));
  }
  if (context.stop.requested()) answer.status = Status::Failed;
  return answer;
}

} // namespace

Verb checkVerb() {
  return {.name = "check",
          .summary =
              "Say what is wrong, doubtful or probably not meant in Quindles. All of it is told at once.",
          .footer = "The exit code is 1 when there are errors.\nExample:\n  quindle check examples/*.quindle",
          .options = {quindlesArgument(),
                      jsonOption("Print JSON: \"quindles\" with file, name, ok, errors and warnings of each, "
                                 "and \"diagnostics\".")},
          .listName = "quindles",
          .run = check};
}

} // namespace Zamt::Host
