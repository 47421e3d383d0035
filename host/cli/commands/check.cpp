#include "files/Interruption.h"
#include "host/cli/commands/commands.h"
#include "host/cli/selects.h"
#include "host/session/QuindleSource.h"
#include "quindle/check/checkQuindle.h"
#include "quindle/text/parseQuindle.h"

#include <CLI/App.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

struct CheckOptions {
  std::vector<std::string> quindles;
  bool json = false;
};

/// What the check of one Quindle came to.
struct Finding {
  std::string label;
  std::string name;
  std::uint64_t errors = 0;
  std::uint64_t warnings = 0;
};

Finding checkOne(const std::string& which, Diag& all) {
  Diag diag;
  QuindleDocument document;
  QuindleSource source;
  if (readQuindleSource(which, source, diag) && parseQuindle(source.text, source.label, document, diag)) {
    checkQuindle(document, diag);
    planSelects(document, diag);
  }
  Finding finding{source.label, document.name, diag.errorCount, 0};
  for (const Diag::Entry& entry : diag.entries)
    if (entry.severity == Diag::Severity::Warning) ++finding.warnings;
  all.absorb(diag);
  return finding;
}

std::string verdict(const Finding& finding) {
  if (finding.errors == 0 && finding.warnings == 0) return finding.label + ": no faults";
  return fmt::format("{}: {}, {}", finding.label, countOf(finding.errors, "error"),
                     countOf(finding.warnings, "warning"));
}

nlohmann::json findingJson(const Finding& finding) {
  return {{"file", finding.label},
          {"name", finding.name},
          {"ok", finding.errors == 0},
          {"errors", finding.errors},
          {"warnings", finding.warnings}};
}

Exit check(const CheckOptions& options, Console& console) {
  Diag all;
  nlohmann::json quindles = nlohmann::json::array();
  for (const std::string& which : options.quindles) {
    if (interrupted) break;
    Diag diag;
    const Finding finding = checkOne(which, diag);
    all.absorb(diag);
    quindles.push_back(findingJson(finding));
    if (options.json) continue;
    console.report(diag);
    console.printLine(verdict(finding));
  }
  if (options.json) console.printJson({{"quindles", quindles}, {"diagnostics", diagnosticsJson(all)}});
  return all.errorCount == 0 && !interrupted ? Exit::Done : Exit::Failed;
}

} // namespace

void addCheckCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App* verb =
      addVerb(app, "check", "Say what is wrong or doubtful in Quindles. All of it is told at once.");
  verb->add_option("QUINDLE", options->quindles, quindlesHelp)->required();
  verb->add_flag(
      "--json", options->json,
      "Print JSON: \"quindles\" with file, name, ok, errors and warnings of each, and \"diagnostics\".");
  verb->footer("The exit code is 1 when there are errors.\nExample:\n  quindle check examples/*.quindle");
  verb->callback([options, &session] { session.exit = check(*options, session.console); });
}

} // namespace Zamt::Host
