#include "host/session/nearest.h"
#include "host/verbs/options.h"
#include "host/verbs/verbs.h"
#include "quindle/reference/QuindleReference.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

/// What is wanted of the manual.
struct Wanted {
  std::string section; ///< Empty for all.
  bool grammar = false;
};

std::string unknownSection(const std::string& key) {
  const std::vector<std::string> keys = quindleReferenceSectionKeys();
  return fmt::format("There is no section called \"{}\".{} The sections are: {}.", key, didYouMean(key, keys),
                     fmt::join(keys, ", "));
}

/// Empty if there is no such section.
std::string referenceText(const Wanted& wanted) {
  if (wanted.grammar) return quindleGrammarSummary();
  if (wanted.section.empty()) return quindleLanguageReferenceText();
  const QuindleReferenceSection* const section = findQuindleReferenceSection(wanted.section);
  return section == nullptr ? std::string() : section->title + "\n\n" + section->body;
}

Data referenceData(const Wanted& wanted) {
  Data::List sections;
  for (const QuindleReferenceSection& section : quindleLanguageReference())
    if (!wanted.grammar && (wanted.section.empty() || wanted.section == section.key))
      sections.push_back(Fields{{"key", section.key}, {"title", section.title}, {"body", section.body}});
  Fields fields{{"sections", std::move(sections)}};
  if (wanted.grammar) fields.emplace_back("grammar", quindleGrammarSummary());
  return fields;
}

Answer showReference(const Request& request, const Context& /*context*/) {
  Wanted wanted{request.text("section"), request.flag("grammar")};
  Diag diag;
  if (referenceText(wanted).empty()) diag.error(unknownSection(wanted.section));
  Answer answer = answerOf(partOf(std::move(diag), std::move(wanted), referenceText, referenceData));
  answer.isLong = true;
  return answer;
}

} // namespace

Verb referenceVerb() {
  return {
      .name = "reference",
      .summary = "Show the manual of the language, or a section of it.",
      .footer = "On a terminal the text is shown by the command in PAGER, or \"less -R\".\n"
                "Example:\n  quindle reference steps",
      .options = {{.name = "section",
                   .help = fmt::format("The section to show: {}.",
                                       fmt::join(quindleReferenceSectionKeys(), ", ")),
                   .placeholder = "SECTION",
                   .argument = true,
                   .names = Option::Names::Choice,
                   .choices = quindleReferenceSectionKeys()},
                  {.name = "grammar",
                   .kind = Option::Kind::Flag,
                   .help = "Show the grammar on one screen instead.",
                   .excludes = {"section"}},
                  jsonOption("Print JSON: \"sections\" with key, title and body of each, or \"grammar\", and "
                             "\"diagnostics\".")},
      .run = showReference};
}

} // namespace Zamt::Host
