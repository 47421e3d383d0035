#include "host/session/quindleOfCondition.h"
#include "quindle/text/parseQuindle.h"
#include "quindle/text/writeQuindle.h"

#include <gtest/gtest.h>

namespace Zamt::Host {
namespace {

/// The parameters behind the cloud and the condition, a line each; or what is wrong.
std::string madeOf(const std::string& condition, const std::string& className = "Rail") {
  QuindleDocument document;
  Diag diag;
  if (!quindleOfCondition(condition, className, document, diag)) return diag.format();
  std::string text;
  for (const QuindleParam& param : document.params)
    if (param.name != "cloud")
      text += param.name + " : " + param.type + " = " + param.defaultValue.toSource() + '\n';
  return text + document.triggers[0].steps[0].condition.toSource();
}

TEST(QuindleOfCondition, TurnsNumbersIntoParametersAndLeavesClassesAndTexts) {
  struct Case {
    std::string condition;
    std::string made;
  };
  const Case cases[] = {
      {"Amplitude > 120", "leastAmplitude : Number = 120\nAmplitude > leastAmplitude"},
      {"intensity < -2.50 # dark", "mostIntensity : Number = -2.50\nintensity < mostIntensity"},
      {"not (Z == 4) and Z == 5",
       "exactZ : Number = 4\nexactZ2 : Number = 5\nnot (Z == exactZ) and Z == exactZ2"},
      {"neighbours(1.5) < 3",
       "mostNeighbours : Number = 2\nradius : Number = 1.5\nneighbours(radius) <= mostNeighbours"},
      {"neighbours(2) > 3",
       "leastNeighbours : Number = 4\nradius : Number = 2\nneighbours(radius) >= leastNeighbours"},
      {"radius > 1 and neighbours(2, maximum: 5)",
       "leastRadius : Number = 1\nradius2 : Number = 2\nmostNeighbours : Number = 5\n"
       "radius > leastRadius and neighbours(radius2, maximum: mostNeighbours)"},
      {"field(\"Echo Width\", 1, 2, 0)", "leastEcho_Width : Number = 1\nmostEcho_Width : Number = 2\n"
                                         "field(\"Echo Width\", leastEcho_Width, mostEcho_Width, 0)"},
      {"class(6) or class(\"Ground, 7\") or expr(\"z > 3\") or within(\"1 2 3\", 4)",
       "radius : Number = 4\nclass(6) or class(\"Ground, 7\") or expr(\"z > 3\") or within(\"1 2 3\", "
       "radius)"},
      {"below(water, 0.1) and inside(tile) and Z >= floor",
       "water : Surface = \ntile : Region = \nfloor : Number = \nmargin : Number = 0.1\n"
       "below(water, margin) and inside(tile) and Z >= floor"}};
  for (const Case& one : cases) EXPECT_EQ(madeOf(one.condition), one.made) << one.condition;
}

TEST(QuindleOfCondition, IsCanonicalAndReadsBack) {
  for (const std::string className : {"", "Rail", "7", "200", "a \"b\""}) {
    QuindleDocument document;
    Diag diag;
    ASSERT_TRUE(quindleOfCondition("neighbours(2) < 3 and class(\"Ground\")", className, document, diag));
    const std::string text = writeQuindle(document);
    QuindleDocument again;
    EXPECT_TRUE(parseQuindle(text, "text", again, diag)) << diag.format();
    EXPECT_EQ(writeQuindle(again), text);
    ASSERT_TRUE(quindleOfCondition("class(\"Counted\")", className, document = {}, diag));
    EXPECT_EQ(diag.format(), "");
    EXPECT_EQ(text.find("# Change the class") != std::string::npos, className.empty()) << text;
  }
}

TEST(QuindleOfCondition, FaultsStandAtTheirPlaceInTheCondition) {
  const std::pair<const char*, const char*> cases[] = {
      {"Z > 3 and\n clas(\"Ground\")", "condition:2:2: error: There is no condition called \"clas\"."},
      {"Z >", "condition:1:4: error: This is no whole condition:"},
      {"", "condition:1:1: error: This is no whole condition:"},
      {"Z > 1 } on key \"k\" { select Z > 2", "condition:1:"},
      {"Z > 1 } } quindle \"b\" { on run {", "condition:1:"},
      {"Z > 1 select Z > 2", "condition:1:1: error: This is more than one condition."},
      {"Z > 1 classify into \"Rail\"", "condition:1:1: error: This is more than one condition."}};
  for (const auto& [condition, said] : cases)
    EXPECT_EQ(madeOf(condition).find(said), 0U) << madeOf(condition);
}

} // namespace
} // namespace Zamt::Host
