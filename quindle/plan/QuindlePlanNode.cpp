#include "quindle/plan/QuindlePlanNode.h"

#include "quindle/core/Tree.h"
#include "quindle/core/commaList.h"
#include "quindle/plan/combinedCost.h"

namespace Zamt {

namespace {

using Kind = QuindlePlanNode::Kind;

bool isJunction(Kind kind) { return kind == Kind::And || kind == Kind::Or; }

/// The children that count: a condition has none, whatever the record holds.
const std::vector<QuindlePlanNode>& members(const QuindlePlanNode& node) {
  static const std::vector<QuindlePlanNode> none;
  return isJunction(node.kind) ? node.children : none;
}

std::uint32_t conditionCost(const QuindlePlanNode& node) {
  return node.kind == Kind::Condition && node.operation ? node.operation->cost : 0;
}

std::string conditionText(const QuindlePlanNode& node) {
  if (node.kind != Kind::Condition || !node.operation) return "?";
  return (node.negated ? "not " : "") + node.operation->name + '(' +
         commaList(node.arguments, &QuindleExpr::toSource) + ')';
}

} // namespace

QuindlePlanNode::QuindlePlanNode(const QuindlePlanNode& other) { tree::copy(other, *this); }

QuindlePlanNode& QuindlePlanNode::operator=(const QuindlePlanNode& other) {
  return *this = QuindlePlanNode(other);
}

QuindlePlanNode& QuindlePlanNode::operator=(QuindlePlanNode&& other) noexcept {
  tree::move(other, *this);
  return *this;
}

QuindlePlanNode::~QuindlePlanNode() {
  if (tree::hasChildren(*this)) tree::destroyChildren(*this);
}

std::uint32_t QuindlePlanNode::cost() const {
  return tree::fold(*this, members, conditionCost,
                    [](std::uint32_t& soFar, std::uint32_t cost, const QuindlePlanNode& junction) {
                      soFar = combinedCost(junction.kind, soFar, cost);
                    });
}

std::string QuindlePlanNode::describe() const {
  std::string out;
  tree::each(
      *this, members,
      [&out](const QuindlePlanNode& node, const tree::Place<QuindlePlanNode>& place) {
        if (place.index > 0) out += place.parent->kind == Kind::And ? " and " : " or ";
        out += isJunction(node.kind) ? "(" : conditionText(node);
      },
      [&out](const QuindlePlanNode& node) {
        if (isJunction(node.kind)) out += ')';
      });
  return out;
}

} // namespace Zamt
