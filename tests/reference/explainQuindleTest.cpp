#include "quindle/reference/explainQuindle.h"

#include "tests/support/parsed.h"
#include "tests/support/smallStack.h"

#include <map>

namespace Zamt::Testing {
namespace {

/// What the steps are told as.
std::string explainedSteps(const std::string& steps, const QuindleResolver& resolver = {}) {
  const std::string text = explainQuindle(parsedRun(steps), resolver);
  const std::string head = "\"Test\"\n\nWhen it runs:\n";
  EXPECT_TRUE(text.starts_with(head)) << text;
  return text.substr(std::min(head.size(), text.size()));
}

/// Quindles by name, as whole texts; one that is empty cannot be run. Counts how often it is asked.
struct Shelf {
  std::map<std::string, std::string> texts;
  int asked = 0;

  QuindleResolver resolver() {
    return [this](const std::string& name, QuindleDocument& document, std::string& error) {
      ++asked;
      if (!texts.contains(name)) return false;
      if (texts[name].empty()) error = "it is switched off";
      if (error.empty()) document = parsed(texts[name]);
      return error.empty();
    };
  }
};

TEST(ExplainQuindle, WhatIsRunIsToldByWhatCanBeFoundOfIt) {
  Shelf shelf{{{"Water", "quindle \"W\" { description \"Sorts water.\" on key \"K\" {\n"
                         "if a { } else { for each b in c { classify into \"W\" } } } }"},
               {"Idle", "quindle \"I\" { on load { classify into \"W\" } }"},
               {"Set", "quindle \"S\" { on run { set a.b = 1 call a.c } }"},
               {"Off", ""}}};
  EXPECT_EQ(explainedSteps("run \"Water\"() run \"Idle\"() run \"Set\"() run \"Off\"() run \"None\"()",
                           shelf.resolver()),
            "  1. runs the Quindle \"Water\", which changes the data\n"
            "      Sorts water.\n"
            "  2. runs the Quindle \"Idle\"\n"
            "  3. runs the Quindle \"Set\"\n"
            "  4. runs the Quindle \"Off\", which cannot be run: it is switched off\n"
            "  5. runs the Quindle \"None\", which cannot be found from here\n");
}

TEST(ExplainQuindle, ChangesAreSeenThroughEightRunsAndEachQuindleIsLookedUpOnce) {
  Shelf shelf{{{"0", "quindle \"0\" { on run { classify into \"C\" } }"}}};
  for (int i = 1; i <= 9; ++i)
    shelf.texts[std::to_string(i)] = "quindle \"Q\" { on run { run \"9\"() run \"9\"() if a { run \"" +
                                     std::to_string(i - 1) + "\"() } } }";
  EXPECT_EQ(explainedSteps("run \"8\"() run \"9\"()", shelf.resolver()),
            "  1. runs the Quindle \"8\", which changes the data\n"
            "  2. runs the Quindle \"9\"\n");
  EXPECT_EQ(shelf.asked, 10);
}

TEST(ExplainQuindle, NoDepthAndNoNumberOfStepsIsTooMuch) {
  constexpr std::size_t levels = 10'000;
  // Indenting every level would take the square of their number.
  EXPECT_LT(explainedSteps("select " + repeated("a == 1 and (b == 2 or (", levels) + "c == 3" +
                           std::string(2 * levels, ')'))
                .size(),
            levels * 1000);
  QuindleDocument steps = parsedRun("run \"Self\"()");
  steps.triggers[0].steps.resize(levels, steps.triggers[0].steps[0]);
  const QuindleResolver self = [&steps](const std::string&, QuindleDocument& document, std::string&) {
    document = steps;
    return true;
  };
  EXPECT_TRUE(explainQuindle(steps, self).ends_with("\n  10000. runs the Quindle \"Self\"\n"));
}

} // namespace
} // namespace Zamt::Testing
