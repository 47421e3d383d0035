#include "files/writeWholeFile.h"
#include "host/verbs/options.h"
#include "host/verbs/texts.h"
#include "host/verbs/verbs.h"
#include "quindle/text/formatQuindle.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

/// What is to be done about what changes.
struct Wanted {
  bool check = false;
  bool write = false;
  bool dropComments = false;

  /// Only names of files are told.
  bool onlyNames() const { return check || write; }
};

/// One Quindle in its canonical layout.
struct Formatted {
  std::string label;
  std::string name;
  std::string text;
  std::size_t strayComments = 0; ///< Those that do not stay where they are.
  bool good = false;             ///< `text` may stand for the Quindle.
  bool changed = false;          ///< It differs from what is there.
  bool written = false;
  bool installed = false; ///< Part of the installation, which is never written.
};

/// Replaces the file unless that would move or drop comments that nobody agreed to.
void writeBack(const Wanted& wanted, Formatted& result, Diag& diag) {
  if (result.installed) {
    diag.error("This file is part of the installation and is left as it is. Save a copy of your own first, "
               "with \"quindle save\".",
               result.label);
    return;
  }
  if (result.strayComments > 0 && !wanted.dropComments) {
    diag.error(fmt::format("This file is left as it is, because {} can't stay in place. Put what is to stay "
                           "into a block, or write --drop-comments.",
                           countOf(result.strayComments, "comment")),
               result.label);
    return;
  }
  std::string problem;
  result.written = writeWholeFile(result.label, std::as_bytes(std::span(result.text)), problem);
  if (!result.written) diag.error(problem, result.label);
}

Formatted formatOne(const Wanted& wanted, const std::string& which, const QuindleReader& reader, Diag& diag) {
  QuindleSource source;
  QuindleDocument document;
  std::vector<QuindleStrayComment> strays;
  Formatted result;
  result.good = reader.read(which, source, diag) &&
                formatQuindle(source.text, source.label, document, result.text, strays, diag);
  result.label = source.label;
  result.installed = source.installed;
  result.name = document.name;
  result.strayComments = strays.size();
  result.changed = result.good && result.text != source.text;
  if (wanted.write && result.changed) writeBack(wanted, result, diag);
  return result;
}

/// The text, or with options that are about files the names of those that change.
std::string formattedText(const Wanted& wanted, const Formatted& result) {
  if (!wanted.onlyNames()) return result.text;
  return (wanted.check ? result.changed : result.written) ? result.label + '\n' : std::string();
}

Data formattedData(const Wanted& wanted, const Formatted& result) {
  Fields fields{{"file", result.label},
                {"name", result.name},
                {"ok", result.good},
                {"changed", result.changed},
                {"written", result.written}};
  if (!wanted.onlyNames()) fields.emplace_back("text", result.text);
  return fields;
}

Answer format(const Request& request, const Context& context) {
  const std::vector<std::string>& quindles = request.texts("quindle");
  const Wanted wanted{request.flag("check"), request.flag("write"), request.flag("drop-comments")};
  if (wanted.write && std::count(quindles.begin(), quindles.end(), "-") != 0)
    return refused(Status::Usage,
                   "Standard input can't be replaced. Leave --write away to have the text printed.");
  Answer answer;
  for (const std::string& which : quindles) {
    if (context.stop.requested()) break;
    Diag diag;
    Formatted result = formatOne(wanted, which, context.quindles, diag);
    if (diag.errorCount != 0 || (wanted.check && result.changed)) answer.status = Status::Failed;
    context.deliver(answer, partOf(
                                std::move(diag), std::move(result),
                                [wanted](const Formatted& one) { return formattedText(wanted, one); },
                                [wanted](const Formatted& one) { return formattedData(wanted, one); }));
  }
  if (context.stop.requested()) answer.status = Status::Failed;
  return answer;
}

} // namespace

Verb fmtVerb() {
  return {
      .name = "fmt",
      .summary = "Print Quindles in their canonical layout.",
      .footer = "A file with errors is left as it is, and the exit code is 1.\n"
                "Example:\n  quindle fmt --check examples/*.quindle",
      .options =
          {quindlesArgument(),
           {.name = "check",
            .kind = Option::Kind::Flag,
            .help = "Print only the names of files that would change. The exit code is 1 if there are any.",
            .excludes = {"write"}},
           {.name = "write",
            .kind = Option::Kind::Flag,
            .help = "Replace the files that change, and print their names. A file with a comment that can't "
                    "stay in place is left as it is."},
           {.name = "drop-comments",
            .kind = Option::Kind::Flag,
            .help =
                "Let --write go on where comments can't stay in place: one outside the blocks moves to the "
                "start of the next block, one behind the last block is lost.",
            .needs = {"write"}},
           jsonOption(
               "Print JSON: \"quindles\" with file, name, ok, changed, written and, without --check and "
               "--write, text of each, and \"diagnostics\".")},
      .listName = "quindles",
      .run = format};
}

} // namespace Zamt::Host
