#include "quindle/plan/QuindlePlanNode.h"

#include "quindle/plan/planQuindle.h"
#include "tests/plan/planText.h"
#include "tests/support/goldenCases.h"

#include <algorithm>
#include <array>
#include <random>

namespace Zamt {
namespace {

using Testing::expressionOf;
using Testing::planOf;

TEST(QuindlePlanNode, DescribesThePlansAndFaultsOfTheGoldenDocument) {
  Testing::expectCases("plan/golden/conditions.md", [](const std::string& condition) {
    QuindlePlanNode plan;
    Diag diag;
    const bool good = planPredicate(expressionOf(condition), plan, diag, "t");
    EXPECT_EQ(good, diag.entries.empty());
    return good ? plan.describe() : diag.format();
  });
}

TEST(QuindlePlanNode, TakesTheNameOfItsFileFromTheDiagnosticsThatItAddsTo) {
  const std::string file = "a name that is too long to stand in the record itself";
  QuindlePlanNode plan;
  Diag diag;
  diag.error("before", file);
  EXPECT_FALSE(planPredicate(expressionOf("a and b and c and d"), plan, diag, diag.entries[0].file));
  ASSERT_EQ(diag.entries.size(), 5U);
  for (const Diag::Entry& entry : diag.entries) EXPECT_EQ(entry.file, file);
}

TEST(QuindlePlanNode, CostsItsCheapestMemberOrItsDearestBranch) {
  EXPECT_EQ(planOf("neighbours(1) < 3 and inside(a) and expr(\"e\")").cost(), 1U);
  EXPECT_EQ(planOf("not (neighbours(1) < 3 and inside(a))").cost(), 10000U);
  EXPECT_EQ(planOf("(expr(\"e\") and a < 1) or inside(b)").cost(), 10U);
  // A cost of 0, which only an empty node has, counts as none until the next member comes.
  for (const auto& [place, cost] : {std::pair{0, 10U}, {1, 100U}, {2, 0U}}) {
    QuindlePlanNode both = planOf("vertical() and expr(\"e\")");
    both.children.insert(both.children.begin() + place, QuindlePlanNode());
    EXPECT_EQ(both.cost(), cost) << place;
  }
}

// More members than a sort takes to fall out of order.
TEST(QuindlePlanNode, KeepsTheWrittenOrderOfMembersThatCostTheSame) {
  std::string condition = "neighbours(1)";
  std::string plan;
  for (int i = 0; i < 50; ++i) {
    condition += " and expr(\"" + std::to_string(i) + "\")";
    plan += "expr(\"" + std::to_string(i) + "\") and ";
  }
  EXPECT_EQ(planOf(condition).describe(), '(' + plan + "neighbours(1, 0, 3))");
}

/// Every field of a plan, a line each node.
std::string dumped(const QuindlePlanNode& plan) {
  std::string lines;
  for (const auto& [node, depth, cost] : quindlePlanLines(plan))
    lines += std::string(depth, ' ') + std::to_string(node->line) +
             (node->operation                           ? ' ' + node->describe()
              : node->kind == QuindlePlanNode::Kind::Or ? " or"
                                                        : " and") +
             '\n';
  return lines;
}

TEST(QuindlePlanNode, StandsWhereItWasWrittenAndSoDoItsCopies) {
  const QuindlePlanNode plan =
      planOf("\nnot (vertical()\nand neighbours(1) <\n3\nand a < 1) or\n\nexpr(\"e\")");
  const std::string lines = "6 or\n 6 not vertical(15, \"NormalVector\")\n 7 not neighbours(1, 0, 2)\n"
                            " 9 not field(\"a\", -1e+300, 1, 0)\n 11 expr(\"e\")\n";
  EXPECT_EQ(dumped(plan), lines);
  QuindlePlanNode copy = plan;
  EXPECT_EQ(dumped(copy), lines);
  QuindlePlanNode other = planOf("inside(a) and inside(b)");
  other = std::move(copy);
  EXPECT_EQ(dumped(other), lines);
  other.children[0] = other.children[1];
  EXPECT_EQ(dumped(other.children[0]), "7 not neighbours(1, 0, 2)\n");
}

// A plan and the expression it came from must agree for all truth values of their conditions. The conditions
// are inside(p0) .. inside(p3), told apart by their argument, with expr and field among them for the sort.
constexpr std::array<const char*, 4> leaves{"inside(\"0\")", "expr(\"1\")", "within(\"2\", 1)",
                                            "class(\"3\")"};

std::string randomCondition(std::mt19937& random, int depth) { // NOLINT(misc-no-recursion): at most 5 deep
  const unsigned choice = depth == 0 ? 0 : random() % 4;
  if (choice == 0) return leaves[random() % leaves.size()];
  if (choice == 1) return "not (" + randomCondition(random, depth - 1) + ")";
  const char* const word = choice == 2 ? " and " : " or ";
  return "(" + randomCondition(random, depth - 1) + ")" + word + "(" + randomCondition(random, depth - 1) +
         ")";
}

bool leafTruth(const QuindleExpr& firstArgument, unsigned truths) {
  return ((truths >> (firstArgument.value.textValue[0] - '0')) & 1U) != 0;
}

bool naive(const QuindleExpr& expr, unsigned truths) { // NOLINT(misc-no-recursion): at most 10 deep
  const auto holds = [truths](const QuindleExpr& operand) { return naive(operand, truths); };
  switch (expr.kind) {
  case QuindleExpr::Kind::And: return std::ranges::all_of(expr.operands, holds);
  case QuindleExpr::Kind::Or: return std::ranges::any_of(expr.operands, holds);
  case QuindleExpr::Kind::Not: return !holds(expr.operands[0]);
  default: return leafTruth(expr.operands[0], truths);
  }
}

bool naive(const QuindlePlanNode& node, unsigned truths) { // NOLINT(misc-no-recursion): at most 10 deep
  const auto holds = [truths](const QuindlePlanNode& child) { return naive(child, truths); };
  if (node.kind == QuindlePlanNode::Kind::And) return std::ranges::all_of(node.children, holds);
  if (node.kind == QuindlePlanNode::Kind::Or) return std::ranges::any_of(node.children, holds);
  return leafTruth(node.arguments[0], truths) != node.negated;
}

// No junction directly in its own kind, conjuncts in order of cost, junctions never negated.
bool keepsShape(const QuindlePlanNode& node) { // NOLINT(misc-no-recursion): at most 10 deep
  const bool isAnd = node.kind == QuindlePlanNode::Kind::And;
  const auto dearer = [](const QuindlePlanNode& a, const QuindlePlanNode& b) { return a.cost() < b.cost(); };
  if (isAnd && !std::is_sorted(node.children.begin(), node.children.end(), dearer)) return false;
  if (node.kind != QuindlePlanNode::Kind::Condition && node.negated) return false;
  return std::all_of(node.children.begin(), node.children.end(), [&](const QuindlePlanNode& child) {
    return child.kind != node.kind && keepsShape(child);
  });
}

TEST(QuindlePlanNode, PlansMeanWhatWasWritten) {
  std::mt19937 random(20240917);
  for (int round = 0; round < 300; ++round) {
    const std::string text = randomCondition(random, 5);
    const QuindleExpr expr = expressionOf(text);
    const QuindlePlanNode plan = planOf(text);
    for (unsigned truths = 0; truths < 1U << leaves.size(); ++truths)
      ASSERT_EQ(naive(plan, truths), naive(expr, truths)) << text << "\n" << plan.describe();
    ASSERT_TRUE(keepsShape(plan)) << plan.describe();
  }
}

} // namespace
} // namespace Zamt
