#include "host/cli/Pager.h"
#include "host/cli/commands/commands.h"
#include "host/session/nearest.h"
#include "quindle/reference/QuindleReference.h"

#include <CLI/App.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace Zamt::Host {

namespace {

struct ReferenceOptions {
  std::string section;
  bool grammar = false;
  bool json = false;
};

std::string unknownSection(const std::string& key) {
  const std::vector<std::string> keys = quindleReferenceSectionKeys();
  return fmt::format("There is no section called \"{}\".{} The sections are: {}.", key, didYouMean(key, keys),
                     fmt::join(keys, ", "));
}

/// Whether `section` is asked for.
bool isWanted(const ReferenceOptions& options, const QuindleReferenceSection& section) {
  return !options.grammar && (options.section.empty() || options.section == section.key);
}

void printReferenceJson(const ReferenceOptions& options, const Diag& diag, Console& console) {
  nlohmann::json sections = nlohmann::json::array();
  for (const QuindleReferenceSection& section : quindleLanguageReference())
    if (isWanted(options, section))
      sections.push_back({{"key", section.key}, {"title", section.title}, {"body", section.body}});
  nlohmann::json json = {{"sections", sections}, {"diagnostics", diagnosticsJson(diag)}};
  if (options.grammar) json["grammar"] = quindleGrammarSummary();
  console.printJson(json);
}

/// What is asked for as one text; empty if there is no such section.
std::string referenceText(const ReferenceOptions& options) {
  if (options.grammar) return quindleGrammarSummary();
  if (options.section.empty()) return quindleLanguageReferenceText();
  const QuindleReferenceSection* const section = findQuindleReferenceSection(options.section);
  return section == nullptr ? std::string() : section->title + "\n\n" + section->body;
}

Exit showReference(const ReferenceOptions& options, Console& console) {
  Diag diag;
  const std::string text = referenceText(options);
  if (text.empty()) diag.error(unknownSection(options.section));
  if (options.json) {
    printReferenceJson(options, diag, console);
  } else {
    console.report(diag);
    if (!text.empty() && !showPaged(text)) console.print(text);
  }
  return diag.errorCount == 0 ? Exit::Done : Exit::Failed;
}

} // namespace

void addReferenceCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ReferenceOptions>();
  CLI::App* verb = addVerb(app, "reference", "Show the manual of the language, or a section of it.");
  CLI::Option* section = verb->add_option(
      "SECTION", options->section,
      fmt::format("The section to show: {}.", fmt::join(quindleReferenceSectionKeys(), ", ")));
  verb->add_flag("--grammar", options->grammar, "Show the grammar on one screen instead.")->excludes(section);
  verb->add_flag("--json", options->json,
                 "Print JSON: \"sections\" with key, title and body of each, or \"grammar\", and "
                 "\"diagnostics\".");
  verb->footer("On a terminal the text is shown by the command in PAGER, or \"less -R\".\n"
               "Example:\n  quindle reference steps");
  verb->callback([options, &session] { session.exit = showReference(*options, session.console); });
}

} // namespace Zamt::Host
