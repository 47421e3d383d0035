#include "quindle/check/advice/ReportAdvice.h"

#include "quindle/check/placeholders.h"
#include "quindle/core/Refusals.h"

#include <algorithm>
#include <string>

namespace Zamt {

void ReportAdvice::start() {
  counted_ = {};
  blocks_.clear();
}

void ReportAdvice::classify(const QuindleStep& step) { counted_ = {step.line, 0, 0, 0}; }

void ReportAdvice::call(const QuindleStep& step) {
  counted_.byCall = step.line;
  if (!counted_.byClassify) return;
  counted_.taken = counted_.byClassify;
  counted_.taker = step.line;
}

void ReportAdvice::report(const QuindleStep& step) {
  if (step.value.kind != QuindleExpr::Kind::Literal) return;
  for (const std::string_view word : placeholders(step.value.value.textValue)) {
    if (advisor_.findParam(word) || values_.isNamed(word)) continue;
    if (word == "selected" || word == "total")
      adviseOnCount(word, step);
    else
      advisor_.warn(
          step.value, refusal::notInReport(std::string(word)),
          "Declare it with \"param\", set it with a \"let\" before this line, or write {selected} or "
          "{total} for a count.");
  }
}

void ReportAdvice::adviseOnCount(std::string_view word, const QuindleStep& step) {
  const std::string braced = "\"{" + std::string(word) + "}\"";
  if (!counted_.byClassify && !counted_.byCall)
    advisor_.warn(step.value,
                  "Nothing has counted any points where this line is reached, so " + braced +
                      " is left unfilled. Write the report behind the \"classify\" that it tells of.");
  else if (counted_.taker)
    advisor_.warn(step.value,
                  "The \"call\" on line " + std::to_string(counted_.taker) +
                      " stands behind the \"classify\" on line " + std::to_string(counted_.taken) + ", and " +
                      braced + " is read from what was acted on last. Write the report before the \"call\".");
}

void ReportAdvice::openBlocks() { blocks_.push_back({counted_, {}, false}); }

void ReportAdvice::startElse() {
  Block& block = blocks_.back();
  block.behindBody = counted_;
  block.hasElse = true;
  counted_ = block.before;
}

void ReportAdvice::closeBlocks(std::optional<bool> decided) {
  const Block& block = blocks_.back();
  const Counted behindBody = block.hasElse ? block.behindBody : counted_;
  const Counted behindElse = block.hasElse ? counted_ : block.before;
  counted_ = decided.value_or(true) ? behindBody : behindElse;
  if (!decided) counted_.join(behindElse);
  blocks_.pop_back();
}

void ReportAdvice::Counted::join(const Counted& other) {
  byClassify = std::max(byClassify, other.byClassify);
  byCall = std::max(byCall, other.byCall);
  if (taker >= other.taker) return;
  taken = other.taken;
  taker = other.taker;
}

} // namespace Zamt
