#include "quindle/runtime/StepGuards.h"

#include "quindle/core/Tree.h"

#include <utility>

namespace Zamt {

namespace {

constexpr std::size_t bytesOfTextForOne = 16;

std::size_t weigh(const QuindleExpr& condition) {
  std::size_t nodes = 0;
  std::size_t bytes = 0;
  const auto weighValue = [&](const QuindleValue& value, const tree::Place<QuindleValue>& place) {
    if (place.parent) ++nodes;
    bytes += value.textValue.size();
  };
  const auto weighNode = [&](const QuindleExpr& node) {
    ++nodes;
    bytes += node.name.size() + node.op.size();
    for (const std::string& name : node.argNames) bytes += name.size();
    tree::each(
        node.value, [](const QuindleValue& value) -> const auto& { return value.items; }, weighValue);
  };
  tree::each(
      condition, [](const QuindleExpr& node) -> const auto& { return node.operands; }, weighNode);
  return nodes + bytes / bytesOfTextForOne;
}

QuindleExpr negation(const QuindleExpr& condition) {
  QuindleExpr negated;
  negated.kind = QuindleExpr::Kind::Not;
  negated.line = condition.line;
  negated.operands.push_back(condition);
  return negated;
}

QuindleExpr conjunction(QuindleExpr left, QuindleExpr right) {
  if (left.kind == QuindleExpr::Kind::None) return right;
  if (right.kind == QuindleExpr::Kind::None) return left;
  QuindleExpr both;
  both.kind = QuindleExpr::Kind::And;
  both.operands.reserve(2);
  both.operands.push_back(std::move(left));
  both.operands.push_back(std::move(right));
  return both;
}

} // namespace

void StepGuards::enter(const QuindleExpr& condition, bool negated) {
  const std::size_t around = levels_.empty() ? 0 : levels_.back().weight;
  levels_.push_back({&condition, negated, around + 1 + weigh(condition)});
}

void StepGuards::leave() { levels_.pop_back(); }

bool StepGuards::count() {
  const std::size_t weight = levels_.empty() ? 0 : levels_.back().weight;
  if (weight > maxGuardWeight - counted_) return false;
  counted_ += weight;
  return true;
}

bool StepGuards::build(QuindleExpr& guard) {
  if (!count()) return false;
  QuindleExpr all;
  for (const Level& level : levels_)
    all = conjunction(std::move(all), level.negated ? negation(*level.condition) : *level.condition);
  guard = std::move(all);
  return true;
}

} // namespace Zamt
