#include "cadmer/LabelSet.h"

#include <gtest/gtest.h>
#include <limits>

namespace Zamt::Testing {
namespace {

using Trait = VValueTrait<LabelSet>;

LabelSet oddSet() {
  const std::string odd =
      std::string("tab\tline\nreturn\rnul") + '\0' + "back\\slash \"quotes\" \xc3\xa4\xff";
  LabelSet set;
  set.labels[-3] = {-3, {0.1F, 1.0F / 3, 1e-30F, 1}, odd, "second\\ttext", {{odd, true}, {"", false}}};
  set.labels[0] = {0, {}, "", "", {}};
  set.labels[std::numeric_limits<std::int32_t>::max()] = {
      std::numeric_limits<std::int32_t>::max(), {1, 0, 0, 0.5F}, "Ground", "", {{"editable", true}}};
  set.selections = {{"Assign", 6}, {odd, -1}, {"", 0}};
  return set;
}

TEST(LabelSetTest, SurvivesItsTextWithAnyBytesInItsNames) {
  LabelSet read;
  ASSERT_TRUE(Trait::setValueFromText(read, Trait::Text(oddSet())));
  EXPECT_EQ(read, oddSet());
  EXPECT_EQ(read.getSelectedValue("Assign"), 6);
  EXPECT_EQ(LabelSet().getSelectedValue("Assign"), -1);
}

TEST(LabelSetTest, AnEmptySetHasATextThatEmptiesASet) {
  LabelSet set = oddSet();
  ASSERT_TRUE(Trait::setValueFromText(set, Trait::Text({})));
  EXPECT_EQ(set, LabelSet());
}

TEST(LabelSetTest, TextThatIsNoLabelSetIsRefusedAndLeavesTheSet) {
  const std::string label = "label\t1\t0\t0\t0\t1\tName\t";
  const std::string lines[] = {"\n",
                               "label\tone\t0\t0\t0\t1\tName\t\n",
                               "label\t99999999999\t0\t0\t0\t1\tName\t\n",
                               label + "\tflag\tmaybe\n",
                               label + "\n" + label + "\n",
                               "selection\tAssign\t1,5\n",
                               "selection\tA\\x\t1\n",
                               "selection\tA\\\t1\n"};
  LabelSet set = oddSet();
  EXPECT_FALSE(Trait::setValueFromText(set, "nonsense"));
  for (const std::string& line : lines) {
    const std::string text = "LabelSet\n" + line;
    EXPECT_FALSE(Trait::setValueFromText(set, text)) << text;
    EXPECT_EQ(set, oddSet()) << text;
  }
  const std::string whole = Trait::Text(oddSet());
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const bool took = Trait::setValueFromText(set, whole.substr(0, length));
    EXPECT_EQ(took, length == 0 || whole[length - 1] == '\n') << length;
  }
}

} // namespace
} // namespace Zamt::Testing
