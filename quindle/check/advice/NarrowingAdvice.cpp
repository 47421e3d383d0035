#include "quindle/check/advice/NarrowingAdvice.h"

#include <utility>

namespace Zamt {

namespace {

constexpr const char* behindClassify =
    ": a \"classify\" does not end a selection, so this one starts from those points.";
constexpr const char* behindBranch =
    ", whatever the \"if\" around that one decides: all selects of a Quindle narrow one selection.";
constexpr const char* wayOut =
    "Move the steps of the one selection to a Quindle of their own and call that with \"run\".";

} // namespace

void NarrowingAdvice::start() {
  way_ = {};
  blocks_.clear();
}

void NarrowingAdvice::select(const QuindleStep& step, KeptConditions conditions) {
  const Selects own{std::make_shared<const KeptConditions>(std::move(conditions)), step.line};
  way_.open.join(own);
  if (!blocks_.empty()) blocks_.back().inside.join(own);
  if (!way_.open.imply(way_.ended))
    tell(step, way_.ended, behindClassify);
  else if (!way_.open.imply(way_.branched))
    tell(step, way_.branched, behindBranch);
}

void NarrowingAdvice::classify(const QuindleStep& step) {
  if (!way_.open.imply(way_.branched)) tell(step, way_.branched, behindBranch);
  way_.end();
  if (!blocks_.empty()) blocks_.back().classifies = true;
}

void NarrowingAdvice::tell(const QuindleStep& step, const Selects& narrowed, const char* why) {
  if (std::exchange(way_.told, true)) return;
  const bool selects = step.kind == QuindleStep::Kind::Select;
  advisor_.warn(step,
                std::string(selects ? "The \"select\" on line " : "The \"classify\" on line ") +
                    std::to_string(step.line) + (selects ? " narrows" : " changes only") +
                    " what the \"select\" on line " + std::to_string(narrowed.line) + " kept" + why,
                wayOut);
}

void NarrowingAdvice::openBlocks() { blocks_.push_back({way_, {}, false}); }

void NarrowingAdvice::startElse() {
  way_ = blocks_.back().before;
  way_.branched.join(blocks_.back().inside);
}

void NarrowingAdvice::closeBlocks() {
  Block closed = std::move(blocks_.back());
  blocks_.pop_back();
  way_ = std::move(closed.before);
  way_.branched.join(closed.inside);
  if (closed.classifies) way_.end();
  if (blocks_.empty()) return;
  blocks_.back().inside.join(closed.inside);
  blocks_.back().classifies = blocks_.back().classifies || closed.classifies;
}

void NarrowingAdvice::Selects::join(const Selects& others) {
  if (!others.conditions) return;
  line = others.line;
  if (!conditions) {
    conditions = others.conditions;
    return;
  }
  auto joined = std::make_shared<KeptConditions>(*conditions);
  joined->join(*others.conditions);
  conditions = std::move(joined);
}

bool NarrowingAdvice::Selects::imply(const Selects& others) const {
  if (!others.conditions) return true;
  return conditions && conditions->imply(*others.conditions);
}

void NarrowingAdvice::Way::end() {
  ended.join(branched);
  ended.join(open);
  branched = {};
  open = {};
  told = false;
}

} // namespace Zamt
