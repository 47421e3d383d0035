#include "quindle/plan/QuindlePlanNode.h"

#include "quindle/core/Tree.h"

#include <algorithm>
#include <utility>

namespace Zamt {

namespace tree {

template <>
struct Shape<QuindlePlanNode> {
  static void eachList(auto& node, const auto& visit) { visit(node.children); }

  static void copyFields(const QuindlePlanNode& from, QuindlePlanNode& to) {
    to.kind = from.kind;
    to.operation = from.operation;
    to.negated = from.negated;
    to.arguments = from.arguments;
    to.line = from.line;
  }
};

} // namespace tree

namespace {

using Kind = QuindlePlanNode::Kind;

bool isJunction(Kind kind) { return kind == Kind::And || kind == Kind::Or; }

/// The children that count: a condition has none, whatever the record holds.
const std::vector<QuindlePlanNode>& members(const QuindlePlanNode& node) {
  static const std::vector<QuindlePlanNode> none;
  return isJunction(node.kind) ? node.children : none;
}

/// What an And or Or costs so far, with a member of cost `cost` coming to those that cost `soFar`.
std::uint32_t combinedCost(Kind kind, std::uint32_t soFar, std::uint32_t cost) {
  if (kind == Kind::Or) return std::max(soFar, cost);
  return soFar == 0 ? cost : std::min(soFar, cost);
}

std::uint32_t conditionCost(const QuindlePlanNode& node) {
  return node.kind == Kind::Condition && node.operation ? node.operation->cost : 0;
}

std::string conditionText(const QuindlePlanNode& node) {
  if (node.kind != Kind::Condition || !node.operation) return "?";
  std::string out = (node.negated ? "not " : "") + node.operation->name + '(';
  for (const QuindleExpr& argument : node.arguments) {
    if (&argument != node.arguments.data()) out += ", ";
    out += argument.toSource();
  }
  return out += ')';
}

} // namespace

QuindlePlanNode::QuindlePlanNode(const QuindlePlanNode& other) {
  tree::Shape<QuindlePlanNode>::copyFields(other, *this);
  if (!other.children.empty()) tree::copyChildren(other, *this);
}

QuindlePlanNode& QuindlePlanNode::operator=(const QuindlePlanNode& other) {
  return *this = QuindlePlanNode(other);
}

// The source may live below the target, so it is taken out before anything of the target is let go.
QuindlePlanNode& QuindlePlanNode::operator=(QuindlePlanNode&& other) noexcept {
  QuindlePlanNode taken(std::move(other));
  kind = taken.kind;
  operation = taken.operation;
  negated = taken.negated;
  arguments.swap(taken.arguments);
  children.swap(taken.children);
  line = taken.line;
  return *this;
}

QuindlePlanNode::~QuindlePlanNode() {
  if (!children.empty()) tree::destroyChildren(*this);
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
