#include "quindle/reference/explainQuindle.h"

#include "tests/support/parsed.h"

#include <map>

namespace Zamt::Testing {
namespace {

using Kind = QuindleStep::Kind;

std::string explained(const std::string& text, const QuindleResolver& resolver = {}) {
  return explainQuindle(parsed(text), resolver);
}

/// What the steps are told as.
std::string explainedSteps(const std::string& steps, const QuindleResolver& resolver = {}) {
  const std::string text = explainQuindle(parsedRun(steps), resolver);
  const std::string head = "\"Test\"\n\nWhen it runs:\n";
  EXPECT_TRUE(text.starts_with(head)) << text;
  return text.substr(std::min(head.size(), text.size()));
}

TEST(ExplainQuindle, HeadTellsOnlyWhatIsThere) {
  EXPECT_EQ(explained("quindle \"A \\\"b\\\"\" { on load { } }"),
            "\"A \"b\"\"\n\nNothing runs it: it has no trigger.\n");
  EXPECT_EQ(explained("quindle \"A\" { description \"Does it.\" shortcut \"Ctrl+U\" enabled false category "
                      "\"C\" on key \"X\" { } }"),
            "\"A\"  (switched off)\nDoes it.\nBound to Ctrl+U.\n\nWhen it runs:\n");
}

TEST(ExplainQuindle, ParametersAreToldWithTypeSourceRangeAndHelp) {
  EXPECT_EQ(
      explained("quindle \"A\" {\n"
                "param a : Grid = active param b : Field = pick param c : Region = brush \"where\"\n"
                "param d : Surface param e : Number = 2 [0 .. 5] \"how many\" param f : Text = \"a\\\"b\"\n"
                "param g : Class = Ground param h : Brush param i : Object = (1, 0.50) param j : File\n"
                "}"),
      "\"A\"\n"
      "\n"
      "It needs:\n"
      "  a - a point cloud, whatever is currently active\n"
      "  b - a field of the data, you are asked for it when it runs\n"
      "  c - a region to work in, taken from the brush you are painting with\n"
      "      where\n"
      "  d - a triangulated surface, no default, so it has to be given\n"
      "  e - a number, normally 2, between 0 and 5\n"
      "      how many\n"
      "  f - some text, normally \"a\\\"b\"\n"
      "  g - a class, normally Ground\n"
      "  h - a Brush, no default, so it has to be given\n"
      "  i - a Object, normally (1, 0.50)\n"
      "  j - a File, no default, so it has to be given\n"
      "\n"
      "Nothing runs it: it has no trigger.\n");
  QuindleDocument half = parsed("quindle \"A\" { param n : Number [1 .. 2] }");
  half.params[0].maximum = {};
  EXPECT_EQ(explainQuindle(half, {}).find("between"), std::string::npos);
}

TEST(ExplainQuindle, StepsAreNumberedAndToldOneByOne) {
  EXPECT_EQ(explainedSteps("# a comment takes no number\n"
                           "let few = (a or b) and c < 3\n"
                           "create box = \"Compute/BrushFromBox\"\n"
                           "classify into \"Water\" as 9 color (0, 0, 1)\n"
                           "classify into target\n"
                           "set box.size = 1.50\n"
                           "connect box.grid <- cloud.grid\n"
                           "call box.\"Fire It\"(1)\n"
                           "if few { # counts\n let x = 1\n if x < 2 { let y = 1 let z = 2 } }\n"
                           "if not (a and b) { } else { report \"no\" }\n"
                           "if few { report \"a\" } else { report \"b\" report \"c\" }\n"
                           "for each t in tiles { classify into \"Lost\" }\n"
                           "report \"{selected} \\\"points\\\"\"\n"
                           "run \"Other\"()\n"),
            "  1. works out few as (a or b) and c < 3\n"
            "  2. makes box, a \"Compute/BrushFromBox\"\n"
            "  3. puts them into the class \"Water\", which is class 9, creating it if the data has no such "
            "class yet\n"
            "  4. puts them into the class target, creating it if the data has no such class yet\n"
            "  5. sets box.size to 1.50\n"
            "  6. attaches box.grid to cloud.grid\n"
            "  7. triggers box.Fire It\n"
            "  8. if few, does 3 steps\n"
            "  9. if not (a and b), does 0 steps, otherwise 1 other step\n"
            "  10. if few, does 1 step, otherwise 2 other steps\n"
            "  11. (a step of a kind that cannot be run yet)\n"
            "  12. says \"{selected} \\\"points\\\"\"\n"
            "  13. runs the Quindle \"Other\", which cannot be found from here\n");
}

TEST(ExplainQuindle, ConditionsAreToldInTheOrderInWhichTheyRun) {
  struct Case {
    const char* condition;
    const char* told;
  };
  const Case cases[] = {
      {"not class(\"Ground\")",
       " by one condition: the opposite of: Keep only the points of the given classes.\n"},
      {"neighbours(1) < 3 and (Amplitude > 5 or not (inside(tile) or expr(\"z\"))) and class(\"Ground\")",
       " matching:\n"
       "       all of these, in this order:\n"
       "         any one of these:\n"
       "           - Keep the points whose value in a field falls in a range.\n"
       "           all of these, in this order:\n"
       "             - the opposite of: Keep the points inside a region.\n"
       "             - the opposite of: Keep the points an arbitrary expression is true for.\n"
       "         - Keep only the points of the given classes.\n"
       "         - Keep the points with a given number of others nearby.\n"
       "       (the cheapest condition runs first, so the expensive ones only ever see the points that got "
       "past it)\n"},
      {"expr(\"z\") or inside(tile)", " matching:\n"
                                      "       any one of these:\n"
                                      "         - Keep the points an arbitrary expression is true for.\n"
                                      "         - Keep the points inside a region.\n"},
      {"frob() and a != 1", " by a condition that does not make sense:\n"
                            "       There is no condition called \"frob\". The ones there are: class, field, "
                            "below, above, vertical, neighbours, inside, within, expr.\n"},
  };
  for (const Case& each : cases)
    EXPECT_EQ(explainedSteps(std::string("select ") + each.condition + "\nreport \"on\""),
              std::string("  1. selects the points") + each.told + "  2. says \"on\"\n");
}

/// Quindles by name; "?" as text stands for one that cannot be run. Counts how often it is asked.
struct Shelf {
  std::map<std::string, std::string> steps;
  int asked = 0;

  QuindleResolver resolver() {
    return [this](const std::string& name, QuindleDocument& document, std::string& error) {
      ++asked;
      const auto found = steps.find(name);
      if (found == steps.end()) return false;
      if (found->second == "?") error = "it is switched off";
      if (found->second != "?") document = parsedRun(found->second);
      return error.empty();
    };
  }
};

TEST(ExplainQuindle, WhatIsRunIsToldByWhatCanBeFoundOfIt) {
  const QuindleDocument water = parsed("quindle \"W\" { description \"Sorts water.\" on key \"K\" {\n"
                                       "if a { } else { for each b in c { classify into \"W\" } } } }");
  const QuindleDocument idle = parsed("quindle \"I\" { on load { classify into \"W\" } }");
  const QuindleResolver resolver = [&](const std::string& name, QuindleDocument& document,
                                       std::string& error) {
    if (name == "Off") error = "it is switched off";
    if (name == "Water") document = water;
    if (name == "Idle") document = idle;
    return name == "Water" || name == "Idle";
  };
  EXPECT_EQ(explainedSteps("run \"Water\"() run \"Idle\"() run \"Off\"() run \"None\"()", resolver),
            "  1. runs the Quindle \"Water\", which changes the data\n"
            "      Sorts water.\n"
            "  2. runs the Quindle \"Idle\"\n"
            "  3. runs the Quindle \"Off\", which cannot be run: it is switched off\n"
            "  4. runs the Quindle \"None\", which cannot be found from here\n");
}

TEST(ExplainQuindle, ChangesAreSeenThroughEightRunsAndNoFurther) {
  Shelf shelf{{{"0", "classify into \"C\""}, {"set", "set a.b = 1 call a.c"}, {"off", "?"}}};
  for (int i = 1; i <= 9; ++i)
    shelf.steps[std::to_string(i)] =
        "run \"off\"() run \"9\"() if a { run \"" + std::to_string(i - 1) + "\"() }";
  EXPECT_EQ(explainedSteps("run \"8\"() run \"set\"() run \"9\"()", shelf.resolver()),
            "  1. runs the Quindle \"8\", which changes the data\n"
            "  2. runs the Quindle \"set\"\n"
            "  3. runs the Quindle \"9\"\n");
}

TEST(ExplainQuindle, QuindlesThatRunOneAnotherAreEachLookedUpOnce) {
  Shelf shelf;
  std::string runAll;
  for (int i = 0; i < 40; ++i) runAll += "run \"" + std::to_string(i) + "\"()\n";
  for (int i = 0; i < 40; ++i) shelf.steps[std::to_string(i)] = runAll;
  const std::string text = explainedSteps(runAll, shelf.resolver());
  EXPECT_EQ(text.find("changes"), std::string::npos);
  EXPECT_EQ(shelf.asked, 40);
}

constexpr std::size_t million = 1'000'000;

TEST(ExplainQuindle, NoDepthAndNoNumberOfStepsIsTooMuch) {
  std::string nots;
  std::string ifs = "if a { ";
  for (std::size_t i = 0; i < million; ++i) {
    nots += "not (";
    ifs += "if a { ";
  }
  EXPECT_EQ(explainedSteps("select " + nots + "class(\"Ground\")" + std::string(million, ')') + '\n' + ifs +
                           std::string(million + 1, '}')),
            "  1. selects the points by one condition: Keep only the points of the given classes.\n"
            "  2. if a, does 1 step\n");

  QuindleDocument steps = parsedRun("run \"Self\"()");
  steps.triggers[0].steps.resize(100'000, steps.triggers[0].steps[0]);
  const QuindleResolver self = [&steps](const std::string&, QuindleDocument& document, std::string&) {
    document = steps;
    return true;
  };
  EXPECT_TRUE(explainQuindle(steps, self).ends_with("\n  100000. runs the Quindle \"Self\"\n"));
}

TEST(ExplainQuindle, AlternatingConditionsOfAnyDepthDoNotIndentForEver) {
  constexpr std::size_t levels = 10'000;
  std::string condition;
  for (std::size_t i = 0; i < levels; ++i) condition += "a == 1 and (b == 2 or (";
  const std::string text = explainedSteps("select " + condition + "c == 3" + std::string(2 * levels, ')'));
  EXPECT_LT(text.size(), levels * 4 * 250);
  EXPECT_NE(text.find('\n' + std::string(7 + 2 * 64, ' ') + "- "), std::string::npos);
}

} // namespace
} // namespace Zamt::Testing
