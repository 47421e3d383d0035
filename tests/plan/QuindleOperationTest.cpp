#include "quindle/plan/QuindleOperation.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace Zamt {
namespace {

// The slots and defaults that the filters of a scene rely on, one line a condition.
TEST(QuindleOperation, CatalogueFillsTheSlotsThatTheFiltersHave) {
  std::string all;
  for (const QuindleOperation& operation : allQuindleOperations()) {
    all += operation.name + ' ' + operation.creator.substr(operation.creator.find("By") + 2) + ' ' +
           std::to_string(operation.cost);
    for (const QuindleOpParam& param : operation.params)
      all +=
          ' ' + param.name + '>' + param.slot + (param.required ? "!" : "=" + param.defaultValue.toSource());
    for (const auto& [slot, value] : operation.fixed) all += " [" + slot + '=' + value.toSource() + ']';
    all += '\n';
  }
  EXPECT_EQ(all,
            "class Class 10 classes>classes! field>classfield=\"Classification\"\n"
            "field Field 10 name>field! minimum>minimum=0 maximum>maximum=1 component>component=0\n"
            "below Tin 100 surface>surface! margin>margin=0 [side=below]\n"
            "above Tin 100 surface>surface! margin>margin=0 [side=above]\n"
            "vertical Direction 10 tolerance>tolerance=15 field>directionfield=\"NormalVector\" "
            "[relation=perpendicular]\n"
            "neighbours Neighbours 10000 radius>radius! minimum>minneighbours=0 maximum>maxneighbours=3\n"
            "inside Box 1 region>box!\n"
            "within Sphere 1 centre>centre! radius>radius!\n"
            "expr Expression 100 expression>expression!\n");
}

TEST(QuindleOperation, LookUpsTakeTheExactWord) {
  for (const char* wrong : {"", "Class", "field ", "fiel"}) EXPECT_EQ(findQuindleOperation(wrong), nullptr);
  const QuindleOperation* const inside = findQuindleOperation("inside");
  ASSERT_NE(inside, nullptr);
  EXPECT_EQ(inside, &allQuindleOperations()[6]);
  EXPECT_EQ(inside->findParam("region"), inside->params.data());
  EXPECT_EQ(inside->findParam("box"), nullptr);
  EXPECT_EQ(findQuindleOperation("within")->requiredCount(), 2U);
  EXPECT_EQ(findQuindleOperation("vertical")->requiredCount(), 0U);
}

TEST(QuindleOperation, DescriptionsOfSurfacesSayWhichSideTheyKeep) {
  EXPECT_NE(findQuindleOperation("below")->description.find(
                "and keeps the ones underneath it. Points the surface does not reach over"),
            std::string::npos);
  EXPECT_NE(findQuindleOperation("above")->description.find("and keeps the ones above it. Points"),
            std::string::npos);
}

} // namespace
} // namespace Zamt
