#include "fuzz/require.h"
#include "quindle/check/adviseQuindle.h"
#include "quindle/text/formatQuindle.h"
#include "quindle/text/parseQuindle.h"
#include "tests/support/dumpDocument.h"
#include "tests/support/spanFaults.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

using Zamt::Fuzz::require;

namespace {

void requirePositionsInText(const Zamt::Diag& diag, const std::string& text) {
  const auto lines = static_cast<std::int32_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  const auto columns = static_cast<std::int32_t>(text.size()) + 1;
  for (const Zamt::Diag::Entry& entry : diag.entries) {
    require(entry.line >= 0 && entry.line <= lines, "a line lies within the text");
    require(entry.column >= 0 && entry.column <= columns, "a column lies within the text");
    require(!entry.message.empty() && entry.message.back() == '.', "a message ends in a full stop");
  }
}

void requireErrorsCounted(const Zamt::Diag& diag) {
  const auto errors = std::count_if(diag.entries.begin(), diag.entries.end(), [](const auto& entry) {
    return entry.severity == Zamt::Diag::Severity::Error;
  });
  require(static_cast<std::uint64_t>(errors) == diag.errorCount, "the errors are counted");
}

/// What is printed of an expression that was read without a fault is read back, and printed the same again.
void requireExpressionsKept(const Zamt::QuindleDocument& doc) {
  for (const Zamt::QuindleTrigger& trigger : doc.triggers) {
    for (const Zamt::QuindleStep& step : trigger.steps) {
      if (step.kind != Zamt::QuindleStep::Kind::Select) continue;
      const std::string printed = step.condition.toSource();
      Zamt::QuindleDocument again;
      Zamt::Diag diag;
      const bool usable =
          Zamt::parseQuindle("quindle \"a\" { on run { select " + printed + " } }", "", again, diag);
      require(usable, "a printed expression reads back");
      require(again.triggers.at(0).steps.at(0).condition.toSource() == printed,
              "an expression that was read back prints the same");
    }
  }
}

/// Formatting what was formatted changes nothing and moves no comment.
void requireFormattedOnce(const std::string& text) {
  Zamt::QuindleDocument doc;
  Zamt::Diag diag;
  std::string once;
  std::string twice;
  std::vector<Zamt::QuindleStrayComment> strays;
  if (!Zamt::formatQuindle(text, "f", doc, once, strays, diag)) return;
  Zamt::QuindleDocument again;
  require(Zamt::formatQuindle(once, "f", again, twice, strays, diag), "the canonical layout is formatted");
  require(once == twice && strays.empty(), "the canonical layout stays as it is");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  Zamt::QuindleDocument doc;
  Zamt::Diag diag;
  const bool usable = Zamt::parseQuindle(text, "f", doc, diag);
  requirePositionsInText(diag, text);
  requireErrorsCounted(diag);
  require(!usable || diag.errorCount == 0, "what has errors is not usable");
  require(usable || diag.errorCount > 0, "what is not usable has an error");

  Zamt::QuindleDocument again;
  Zamt::Diag diagAgain;
  Zamt::parseQuindle(text, "f", again, diagAgain);
  require(diag.format() == diagAgain.format(), "the same text has the same faults");
  const Zamt::QuindleDocument copy = again;
  require(Zamt::Testing::dumpDocument(doc) == Zamt::Testing::dumpDocument(copy),
          "the same text gives the same document, and so does a copy of it");
  if (usable) requireExpressionsKept(doc);
  if (usable) requireFormattedOnce(text);
  require(Zamt::Testing::spanFault(text).empty(), "the spans hold all but white space, each in its place");

  Zamt::Diag advice;
  Zamt::adviseQuindle(doc, advice);
  requirePositionsInText(advice, text);
  require(advice.errorCount == 0, "advice is no error");
  return 0;
}
