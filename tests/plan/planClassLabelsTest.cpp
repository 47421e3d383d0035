#include "quindle/plan/compileClassify.h"

#include "tests/plan/planText.h"
#include "tests/support/goldenCases.h"
#include "tests/support/labelText.h"

#include <array>
#include <limits>

namespace Zamt {
namespace {

/// The labels that there are, the name and the number of the class, and each class selected, a line each.
std::string planned(const std::string& text) {
  std::istringstream lines(text);
  std::array<std::string, 3> asked; // labels, name and number
  for (std::string& line : asked) std::getline(lines, line);
  std::vector<std::string> selected;
  for (std::string line; std::getline(lines, line);) selected.push_back(line);
  std::string labels = "untouched";
  std::int32_t assigned = -1;
  Diag diag;
  const bool good = planClassLabels(asked[0].empty() ? "" : Testing::labelText(asked[0]), asked[1],
                                    std::stoi(asked[2]), selected, {}, labels, assigned, diag);
  EXPECT_EQ(good, labels != "untouched");
  EXPECT_EQ(assignedClassOf(good ? labels : ""), assigned);
  return (good ? std::to_string(assigned) + ": " + Testing::shortLabels(labels) + '\n' : "") + diag.format();
}

TEST(planClassLabels, PlansWhatTheGoldenDocumentShows) {
  Testing::expectCases("plan/golden/labels.md", planned);
}

LabelSet plannedWithout(const char* name, std::int32_t number, const std::vector<std::string>& selected,
                        const QuindleValue& colour) {
  std::string text;
  std::int32_t assigned = 0;
  Diag diag;
  LabelSet set;
  EXPECT_TRUE(planClassLabels("", name, number, selected, colour, text, assigned, diag));
  EXPECT_TRUE(VValueTrait<LabelSet>::setValueFromText(set, text));
  return set;
}

TEST(planClassLabels, OpensAllClassesOfAByteWhereNothingIsKnown) {
  for (const auto& [number, labels, target] : {std::tuple{-1, 256U, 1}, std::tuple{300, 257U, 300}}) {
    LabelSet set = plannedWithout("Ground", number, {}, {});
    EXPECT_EQ(set.labels.size(), labels);
    EXPECT_TRUE(set.labels[255].flags["editable"]);
    EXPECT_EQ(set.labels[target].name, "Ground");
  }
}

TEST(planClassLabels, TakesColoursOfThreeOrFourNumbers) {
  constexpr std::array<float, 4> grey{0.5F, 0.5F, 0.5F, 1};
  const std::pair<std::vector<double>, std::array<float, 4>> cases[] = {
      {{1, 0, 0}, {1, 0, 0, 1}},
      {{1, 0, 0, 0.5}, {1, 0, 0, 0.5F}},
      {{1, 0}, grey},
      {{1e300, 0, 0}, {std::numeric_limits<float>::max(), 0, 0, 1}}};
  for (const auto& [written, colour] : cases) {
    QuindleValue tuple;
    tuple.kind = QuindleValue::Kind::Tuple;
    for (const double item : written) tuple.items.push_back(QuindleValue::number(item));
    LabelSet set = plannedWithout("New", 9, {"1"}, tuple);
    EXPECT_EQ(set.labels[9].color, colour);
    EXPECT_EQ(set.labels[1].color, grey) << "a class that is only a number";
  }
}

TEST(collectPlanClasses, ListsTheClassesOfTheGoldenDocument) {
  Testing::expectCases("plan/golden/classes.md", [](const std::string& condition) {
    std::vector<std::string> collected{"before"};
    collectPlanClasses(Testing::planOf(condition), collected);
    std::string lines;
    for (const std::string& name : collected) lines += name + '\n';
    return lines;
  });
}

} // namespace
} // namespace Zamt
