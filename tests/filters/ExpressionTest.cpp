#include "host/filters/expression/Expression.h"

#include "tests/support/goldenCases.h"

#include <clocale>
#include <cmath>
#include <limits>
#include <random>

namespace Zamt::Host {
namespace {

const std::vector<ExpressionName> names{{"X"},          {"Y"},     {"Z"},       {"Intensity"},
                                        {"order"},      {"notch"}, {"android"}, {"Color", 3},
                                        {"Scan Angle"}, {"and"},   {"none"}};

/// Each input's value is 10 times its name's position, its component added; "none" has no value.
double valueOf(const std::string& text) {
  std::string problem;
  const auto expression = Expression::compile(text, names, problem);
  EXPECT_TRUE(expression) << problem;
  if (!expression) return -1;
  std::vector<double> values;
  for (const ExpressionInput& input : expression->inputs())
    values.push_back(names[input.name].name == "none"
                         ? std::numeric_limits<double>::quiet_NaN()
                         : 10.0 * static_cast<double>(input.name) + input.component);
  std::vector<std::span<const double>> columns;
  columns.reserve(values.size());
  for (const double& value : values) columns.emplace_back(&value, 1);
  std::vector<double> scratch;
  double result = 0;
  expression->evaluate(columns, scratch, {&result, 1});
  return result;
}

TEST(Expression, IsWorthOrSaysWhatTheGoldenDocumentShows) {
  Testing::expectCases("filters/golden/expressions.md", [](const std::string& text) {
    std::string problem;
    if (!Expression::compile(text, names, problem)) return problem;
    std::ostringstream value;
    value.precision(15);
    value << valueOf(text);
    return value.str();
  });
}

struct Tree {
  std::string text;
  double value;
};

/// An operator: the lowest rank that may stand on its either side without parentheses, and what it does. One
/// without a left side is a prefix.
struct Operator {
  const char* word;
  int left;
  int right;
  double (*apply)(double, double);
};

bool truth(double v) { return v < 0 || v > 0; }

/// By rank, the loosest first.
const std::vector<std::vector<Operator>> ranks{
    {{" or ", 0, 1, [](double a, double b) { return truth(a) || truth(b) ? 1.0 : 0.0; }}},
    {{" and ", 1, 2, [](double a, double b) { return truth(a) && truth(b) ? 1.0 : 0.0; }}},
    {{"not ", -1, 2, [](double, double b) { return truth(b) ? 0.0 : 1.0; }}},
    {{"<", 4, 4, [](double a, double b) { return a < b ? 1.0 : 0.0; }},
     {">=", 4, 4, [](double a, double b) { return a >= b ? 1.0 : 0.0; }}},
    {{"-", 4, 5, [](double a, double b) { return a - b; }}},
    {{"/", 5, 6, [](double a, double b) { return a / b; }},
     {"%", 5, 6, [](double a, double b) { return std::fmod(a, b); }}},
    {{"-", -1, 6, [](double, double b) { return -b; }}},
    {{"^", 8, 6, [](double a, double b) { return std::pow(a, b); }}}};

/// A random expression with parentheses only where the ranks demand them, and its value worked out alongside.
Tree randomTree(std::mt19937& random, int rank, int depth) { // NOLINT(misc-no-recursion): at most 6 deep
  if (depth == 0) {
    const auto value = random() % 5;
    return {std::to_string(value), static_cast<double>(value)};
  }
  const auto own = static_cast<int>(random() % ranks.size());
  const std::vector<Operator>& alike = ranks[static_cast<std::size_t>(own)];
  const Operator& op = alike[random() % alike.size()];
  const Tree a = op.left < 0 ? Tree{} : randomTree(random, op.left, depth - 1);
  const Tree b = randomTree(random, op.right, depth - 1);
  const Tree made{a.text + op.word + b.text, op.apply(a.value, b.value)};
  return own < rank ? Tree{"(" + made.text + ")", made.value} : made;
}

TEST(Expression, AgreesWithATreeOnRandomExpressions) {
  std::mt19937 random(3);
  for (int i = 0; i < 3000; ++i) {
    const Tree tree = randomTree(random, 0, 1 + i % 6);
    const double value = valueOf(tree.text);
    ASSERT_TRUE(value == tree.value || (std::isnan(value) && std::isnan(tree.value))) << tree.text;
  }
}

TEST(Expression, NestingIsBoundByNothing) {
  constexpr std::size_t deep = 1'000'000;
  std::string right;
  for (std::size_t i = 0; i < deep; ++i) right += "1+(";
  std::string nots;
  for (std::size_t i = 0; i < deep; ++i) nots += "not ";
  const std::pair<std::string, double> cases[] = {
      {std::string(deep, '(') + "7" + std::string(deep, ')'), 7},
      {right + "0" + std::string(deep, ')'), static_cast<double>(deep)},
      {nots + "3", 1},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(valueOf(text), value);
  std::string problem;
  EXPECT_FALSE(Expression::compile(std::string(deep, '('), names, problem));
  EXPECT_LT(problem.size(), 300U);
}

TEST(Expression, ReadsNumbersAlikeInEveryLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  const bool set = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
  EXPECT_EQ(valueOf("max(1.5, 0.25)"), 1.5);
  std::setlocale(LC_ALL, before.c_str());
  if (!set) GTEST_SKIP() << "The locale de_DE.UTF-8 is not installed.";
}

} // namespace
} // namespace Zamt::Host
