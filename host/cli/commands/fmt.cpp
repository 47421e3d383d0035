#include "files/Interruption.h"
#include "files/writeWholeFile.h"
#include "host/cli/commands/commands.h"
#include "host/cli/strayComments.h"
#include "host/session/QuindleSource.h"
#include "quindle/core/NestedSteps.h"
#include "quindle/core/Tree.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/text/parseQuindle.h"
#include "quindle/text/writeQuindle.h"

#include <CLI/App.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

struct FormatOptions {
  std::vector<std::string> quindles;
  bool check = false;
  bool write = false;
  bool dropComments = false;
  bool json = false;
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

/// How many blanks stand in front of the steps of a trigger and of all that their blocks hold.
std::uint64_t indentOf(const QuindleDocument& document) {
  constexpr std::uint64_t indent = 4;
  constexpr std::uint64_t stepDepth = 2;   // a step in no block but the trigger's
  constexpr std::uint64_t linesOfStep = 3; // the step, "else {" and "}", where it has blocks
  const auto childrenOf = [](const QuindleStep& step) { return NestedSteps(step); };
  std::uint64_t blanks = 0;
  std::uint64_t depth = stepDepth;
  for (const QuindleTrigger& trigger : document.triggers)
    for (const QuindleStep& step : trigger.steps)
      tree::walk(step, childrenOf, [&](const QuindleStep& inner, const QuindleStep*, std::size_t index) {
        if (index == 0) blanks += indent * depth++ * (hasBlocks(inner.kind) ? linesOfStep : 1);
        if (index == NestedSteps(inner).size()) --depth;
      });
  return blanks;
}

/// Writes the document, reads that back and writes it again: the same bytes come out for the same Quindle
/// however often it is formatted, though a line of a comment that holds no text is only lost the second time.
/// It also keeps what the layout can't express from being taken for the Quindle.
bool writeCanonical(const QuindleDocument& document, std::string& text, Diag& diag) {
  if (indentOf(document) > maxQuindleBytes) {
    diag.error(
        fmt::format("Its blocks lie so deep inside one another that the indentation would take more than "
                    "{} bytes. Nest them less deeply.",
                    grouped(maxQuindleBytes)),
        document.sourceFile);
    return false;
  }
  Diag again;
  QuindleDocument reread;
  if (parseQuindle(writeQuindle(document), document.sourceFile, reread, again)) {
    text = writeQuindle(reread);
    return true;
  }
  diag.error("The canonical layout of this Quindle can't be read back: " + again.firstError() +
                 " It is left as it is; write that step in another way.",
             document.sourceFile);
  return false;
}

void warnOf(const StrayComment& comment, const std::string& label, Diag& diag) {
  const std::string message =
      comment.movedTo == nullptr
          ? "The canonical layout drops this comment, as no step or block end follows it on a later line. "
            "To keep it, put it on a line of its own inside a block."
          : fmt::format("The canonical layout moves this comment to the start of the block of line {}. To "
                        "choose its place, put it on a line of its own inside a block.",
                        comment.movedTo->line);
  diag.at(Diag::Severity::Warning, message, label, comment.line, 0);
}

void formatSource(const QuindleSource& source, const QuindleDocument& document, Formatted& result,
                  Diag& diag) {
  const Leftovers leftovers = findLeftovers(source.text, document);
  if (leftovers.textBehindLine != 0) {
    diag.at(Diag::Severity::Error,
            "This stands behind the end of the Quindle, where nothing reads it. Remove it before formatting.",
            source.label, leftovers.textBehindLine, 0);
    return;
  }
  for (const StrayComment& comment : leftovers.comments) warnOf(comment, source.label, diag);
  result.strayComments = leftovers.comments.size();
  result.good = writeCanonical(document, result.text, diag);
  result.changed = result.good && result.text != source.text;
}

/// Replaces the file unless that would move or drop comments that nobody agreed to.
void writeBack(const FormatOptions& options, Formatted& result, Diag& diag) {
  if (result.installed) {
    diag.error("This file is part of the installation and is left as it is. Save a copy of your own first, "
               "with \"quindle save\".",
               result.label);
    return;
  }
  if (result.strayComments > 0 && !options.dropComments) {
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

Formatted formatOne(const FormatOptions& options, const std::string& which, Diag& diag) {
  QuindleSource source;
  QuindleDocument document;
  Formatted result;
  const bool read =
      readQuindleSource(which, source, diag) && parseQuindle(source.text, source.label, document, diag);
  result.label = source.label;
  result.installed = source.installed;
  result.name = document.name;
  if (read) formatSource(source, document, result, diag);
  if (options.write && result.changed) writeBack(options, result, diag);
  return result;
}

/// The text, or with options that are about files the names of those that change.
void print(const FormatOptions& options, const Formatted& result, Console& console) {
  if (!options.check && !options.write)
    console.print(result.text);
  else if (options.check ? result.changed : result.written)
    console.printLine(result.label);
}

nlohmann::json formattedJson(const FormatOptions& options, const Formatted& result) {
  nlohmann::json json = {{"file", result.label},
                         {"name", result.name},
                         {"ok", result.good},
                         {"changed", result.changed},
                         {"written", result.written}};
  if (!options.check && !options.write) json["text"] = result.text;
  return json;
}

Exit format(const FormatOptions& options, Console& console) {
  if (options.write && std::count(options.quindles.begin(), options.quindles.end(), "-") != 0) {
    console.error("Standard input can't be replaced. Leave --write away to have the text printed.");
    return Exit::Usage;
  }
  Diag all;
  bool differs = false;
  nlohmann::json quindles = nlohmann::json::array();
  for (const std::string& which : options.quindles) {
    if (interrupted) break;
    Diag diag;
    const Formatted result = formatOne(options, which, diag);
    differs = differs || result.changed;
    all.absorb(diag);
    if (options.json) {
      quindles.push_back(formattedJson(options, result));
      continue;
    }
    console.report(diag);
    print(options, result, console);
  }
  if (options.json) console.printJson({{"quindles", quindles}, {"diagnostics", diagnosticsJson(all)}});
  return all.errorCount == 0 && !interrupted && !(options.check && differs) ? Exit::Done : Exit::Failed;
}

} // namespace

void addFmtCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<FormatOptions>();
  CLI::App* verb = addVerb(app, "fmt", "Print Quindles in their canonical layout.");
  verb->add_option("QUINDLE", options->quindles, quindlesHelp)->required();
  CLI::Option* check =
      verb->add_flag("--check", options->check,
                     "Print only the names of files that would change. The exit code is 1 if there are any.");
  CLI::Option* write =
      verb->add_flag("--write", options->write,
                     "Replace the files that change, and print their names. A file with a comment that can't "
                     "stay in place is left as it is.");
  check->excludes(write);
  verb->add_flag("--drop-comments", options->dropComments,
                 "Let --write go on where comments can't stay in place: one outside the blocks moves to the "
                 "start of the next block, one behind the last block is lost.")
      ->needs(write);
  verb->add_flag("--json", options->json,
                 "Print JSON: \"quindles\" with file, name, ok, changed, written and, without --check and "
                 "--write, text of each, and \"diagnostics\".");
  verb->footer("A file with errors is left as it is, and the exit code is 1.\n"
               "Example:\n  quindle fmt --check examples/*.quindle");
  verb->callback([options, &session] { session.exit = format(*options, session.console); });
}

} // namespace Zamt::Host
