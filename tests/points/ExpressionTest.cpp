#include "host/points/Expression.h"

#include <gtest/gtest.h>

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
double valueOf(const Expression& expression) {
  std::vector<double> values;
  for (const ExpressionInput& input : expression.inputs())
    values.push_back(names[input.name].name == "none"
                         ? std::numeric_limits<double>::quiet_NaN()
                         : 10.0 * static_cast<double>(input.name) + input.component);
  std::vector<std::span<const double>> columns;
  for (const double& value : values) columns.emplace_back(&value, 1);
  std::vector<double> scratch;
  double result = 0;
  expression.evaluate(columns, scratch, {&result, 1});
  return result;
}

struct Case {
  const char* text;
  double value;
};

TEST(Expression, MeansWhatItSays) {
  const Case cases[] = {
      {"Intensity > 12 and z < 40.5", 1},
      {"1 + 2 * 3 - 4 / 8 % 3", 6.5},
      {"2 ^ 3 ^ 2", 512},
      {"-2 ^ 2", -4},
      {"2 ^ -1", 0.5},
      {"- - 3 + + 2", 5},
      {"7 - 2 - 1", 4},
      {"-7 % 4", -3},
      {"not 1 < 2", 0},
      {"not not 5", 1},
      {"not 0 and 0", 0},
      {"1 or 0 and 0", 1},
      {"1 < not 0", 0},
      {"order+notch+android", 150},
      {"not order", 0},
      {"notch or android", 1},
      {"(order>1)and(notch>1)", 1},
      {"1 <= 1 and 2 >= 3 or 1 == 1.0 and 1 != 2", 1},
      {"Color[0] + Color[ 2 ]", 142},
      {"'Scan Angle' + 'and' + x + y", 180},
      {"min(3, 1, 2) + max(4) + atan2(0, 1)", 5},
      {"abs(-1) + sqrt(16) + floor(1.5) + ceil(1.5) + round(2.5)", 11},
      {"true - false", 1},
      {"cos(pi)", -1},
      {".5e1 + 1.", 6},
      {"none == none", 0},
      {"none or 0", 0},
      {"not none", 1},
  };
  for (const Case& one : cases) {
    std::string problem;
    const auto expression = Expression::compile(one.text, names, problem);
    ASSERT_TRUE(expression) << problem;
    EXPECT_EQ(valueOf(*expression), one.value) << one.text;
  }
}

struct Fault {
  const char* text;
  const char* problem;
};

TEST(Expression, SaysWhereAndWhatIsWrong) {
  const std::vector<ExpressionName> few{{"X"}, {"Color", 3}};
  const Fault cases[] = {
      {"Amplitud > 1", "at character 1, there is no field called \"Amplitud\". The fields are X, Color."},
      {"1 + 'x y'", "at character 5, there is no field called \"x y\". The fields are X, Color."},
      {"1 + 'x", "at character 5, a quoted field name has no end. Write a single quote behind the name."},
      {"X = 5", "at character 3, \"=\" would set a value, and an expression only asks. Write == to compare."},
      {"", "at character 1, a value is missing at the end. Write a field, a number or a parenthesis there."},
      {"X >",
       "at character 4, a value is missing at the end. Write a field, a number or a parenthesis there."},
      {"X > and 1", "at character 5, a value is missing in front of \"and\". Write a field, a number or a "
                    "parenthesis there."},
      {"()", "at character 2, a value is missing in front of \")\". Write a field, a number or a parenthesis "
             "there."},
      {"X X", "at character 3, an operator is missing in front of \"X\". Join values with +, <, and, or and "
              "their like."},
      {"(X", "at character 1, a parenthesis is not closed. Write the \")\" that belongs to it."},
      {"X)", "at character 2, a \")\" closes nothing. Take it away, or write the \"(\" that it belongs to."},
      {"(1, 2)",
       "at character 3, a comma stands outside of a function. Write numbers with a point, as in 0.5."},
      {"1 < X < 3",
       "at character 7, a comparison is compared again. Compare two values at a time and join the "
       "comparisons with and."},
      {"atan2(1)", "at character 1, \"atan2\" takes two values and has 1. Separate values with commas."},
      {"sin(1, 2)", "at character 1, \"sin\" takes one value and has 2. Separate values with commas."},
      {"Color", "at character 1, \"Color\" has 3 values a point. Write Color[0] to Color[2]."},
      {"Color[3]", "at character 1, \"Color\" has 3 values a point. Write Color[0] to Color[2]."},
      {"X[1]", "at character 1, \"X\" has 1 value a point. Write X[0]."},
      {"1.2.3", "at character 1, there is no number that can be read. Write it as in 12, 0.5 or 1e-3."},
      {"X; 1", "at character 2, an operator is missing in front of \";\". Join values with +, <, and, or and "
               "their like."},
  };
  for (const Fault& one : cases) {
    std::string problem;
    EXPECT_FALSE(Expression::compile(one.text, few, problem)) << one.text;
    EXPECT_EQ(problem, std::string("The expression \"") + one.text + "\" can't be used: " + one.problem);
  }
}

struct Tree {
  std::string text;
  double value;
};

/// A random expression with parentheses only where the ranks demand them, and its value worked out alongside.
Tree randomTree(std::mt19937& random, int rank, int depth) {
  const auto pick = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
  if (depth == 0) {
    const int value = pick(5);
    return {std::to_string(value), static_cast<double>(value)};
  }
  const auto below = [&](int inner) { return randomTree(random, inner, depth - 1); };
  const auto truth = [](double v) { return v < 0 || v > 0; };
  const int kind = pick(9) + 1;
  Tree made;
  if (kind == 1) {
    const Tree a = below(1), b = below(2);
    made = {a.text + " or " + b.text, truth(a.value) || truth(b.value) ? 1.0 : 0.0};
  } else if (kind == 2) {
    const Tree a = below(2), b = below(3);
    made = {a.text + " and " + b.text, truth(a.value) && truth(b.value) ? 1.0 : 0.0};
  } else if (kind == 3) {
    const Tree a = below(3);
    made = {"not " + a.text, truth(a.value) ? 0.0 : 1.0};
  } else if (kind == 4) {
    const Tree a = below(5), b = below(5);
    made = {a.text + (depth % 2 ? "<" : ">=") + b.text,
            (depth % 2 ? a.value < b.value : a.value >= b.value) ? 1.0 : 0.0};
  } else if (kind == 5) {
    const Tree a = below(5), b = below(6);
    made = {a.text + "-" + b.text, a.value - b.value};
  } else if (kind == 6) {
    const Tree a = below(6), b = below(7);
    made = {a.text + (depth % 2 ? "/" : "%") + b.text,
            depth % 2 ? a.value / b.value : std::fmod(a.value, b.value)};
  } else if (kind == 7) {
    const Tree a = below(7);
    made = {"-" + a.text, -a.value};
  } else if (kind == 8) {
    const Tree a = below(9), b = below(7);
    made = {a.text + "^" + b.text, std::pow(a.value, b.value)};
  } else {
    const Tree a = below(1), b = below(1);
    made = {"max(" + a.text + "," + b.text + ")", std::fmax(a.value, b.value)};
  }
  return kind < rank ? Tree{"(" + made.text + ")", made.value} : made;
}

TEST(Expression, AgreesWithATreeOnRandomExpressions) {
  std::mt19937 random(3);
  for (int i = 0; i < 3000; ++i) {
    const Tree tree = randomTree(random, 1, 1 + i % 6);
    std::string problem;
    const auto expression = Expression::compile(tree.text, names, problem);
    ASSERT_TRUE(expression) << problem;
    const double value = valueOf(*expression);
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
  for (const auto& [text, value] : cases) {
    std::string problem;
    const auto expression = Expression::compile(text, names, problem);
    ASSERT_TRUE(expression) << problem;
    EXPECT_EQ(valueOf(*expression), value);
  }
  std::string problem;
  EXPECT_FALSE(Expression::compile(std::string(deep, '('), names, problem));
  EXPECT_LT(problem.size(), 300U);
}

TEST(Expression, ReadsNumbersAlikeInEveryLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  const bool set = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
  std::string problem;
  const auto expression = Expression::compile("max(1.5, 0.25)", names, problem);
  std::setlocale(LC_ALL, before.c_str());
  ASSERT_TRUE(expression) << problem;
  EXPECT_EQ(valueOf(*expression), 1.5);
  if (!set) GTEST_SKIP() << "The locale de_DE.UTF-8 is not installed.";
}

} // namespace
} // namespace Zamt::Host
