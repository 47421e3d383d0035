#include "cadmer/LabelSet.h"
#include "sorbine/VParameter.h"
#include "tests/support/Panel.h"

#include <clocale>
#include <gtest/gtest.h>
#include <limits>

namespace Zamt::Testing {
namespace {

/// Texts with what they are printed as, or nothing if they are to be refused.
template <class T>
void expectTexts(T before, const std::vector<std::pair<std::string, std::string>>& cases) {
  for (const auto& [text, printed] : cases) {
    VParameter parameter(std::make_shared<VValue<T>>(before));
    EXPECT_EQ(parameter.setValueFromText(text, nullptr, {}), !printed.empty()) << text;
    const std::string expected = printed.empty() ? VValueTrait<T>::Text(before) : printed;
    EXPECT_EQ(parameter.getValueAsText(nullptr, {}, false), expected) << text;
  }
}

TEST(Values, TextsThatReadAsTheTypeAreTakenAndOthersLeaveTheValue) {
  expectTexts<double>(7.5,
                      {{"+2", "2"}, {"-1e5", "-100000"}, {"1e300", "1e+300"}, {".5", "0.5"}, {"inf", "inf"}});
  expectTexts<double>(7.5, {{"", ""}, {"+", ""}, {"+-1", ""}, {"1,5", ""}, {"1.5 m", ""}, {"1e999", ""}});
  expectTexts<float>(0.5F, {{"0.1", "0.1"}, {"x", ""}});
  expectTexts<std::int32_t>(
      4, {{"-2147483648", "-2147483648"}, {"+6", "6"}, {"2147483648", ""}, {"1.0", ""}, {"", ""}});
  expectTexts<bool>(true, {{"false", "false"}, {"true", "true"}, {"1", ""}, {"True", ""}, {"", ""}});
  expectTexts<std::string>("before", {{"any \n bytes", "any \n bytes"}});
  expectTexts<Rethold::StrongPtr<VAction>>(nullptr, {{"x", ""}});
  for (const double number :
       {1.0 / 3, 1e15, 123456789012345678.0, 5e-324, -0.0, 0.1 + 0.2, std::numeric_limits<double>::max()}) {
    double read = 0;
    ASSERT_TRUE(VValueTrait<double>::setValueFromText(read, VValueTrait<double>::Text(number)));
    EXPECT_EQ(read, number);
  }
}

TEST(Values, AMemberIsReadAndWrittenByItsNameAndAgesTheWhole) {
  VParameter parameter(std::make_shared<VValue<Panel>>());
  EXPECT_TRUE(parameter.setValueFromText("2", nullptr, "number"));
  EXPECT_EQ(parameter.getValueAsText(nullptr, "number", false), "2");
  EXPECT_GT(parameter.value()->age(), 0U);
  EXPECT_FALSE(parameter.setValueFromText("2", nullptr, "second"));
  EXPECT_EQ(parameter.getValueAsText(nullptr, "second", false), "");
}

using Labels = VValueTrait<LabelSet>;

LabelSet oddSet() {
  const std::string odd =
      std::string("tab\tline\nreturn\rnul") + '\0' + "back\\slash \"quotes\" \xc3\xa4\xff";
  LabelSet set;
  set.labels[-3] = {-3, {0.1F, 1.0F / 3, 1e-30F, 1}, odd, "second\\ttext", {{odd, true}, {"", false}}};
  set.labels[std::numeric_limits<std::int32_t>::max()] = {
      std::numeric_limits<std::int32_t>::max(), {1, 0, 0, 0.5F}, "Ground", "", {{"editable", true}}};
  set.selections = {{"Assign", 6}, {odd, -1}, {"", 0}};
  return set;
}

TEST(Values, ALabelSetSurvivesItsTextWithAnyBytesInItsNames) {
  LabelSet read;
  ASSERT_TRUE(Labels::setValueFromText(read, Labels::Text(oddSet())));
  EXPECT_EQ(read, oddSet());
  EXPECT_EQ(Labels::Text(oddSet()).find_first_of(std::string("\r\0", 2)), std::string::npos);
  EXPECT_EQ(read.getSelectedValue("Assign"), 6);
  EXPECT_EQ(LabelSet().getSelectedValue("Assign"), -1);
  ASSERT_TRUE(Labels::setValueFromText(read, Labels::Text({})));
  EXPECT_EQ(read, LabelSet());
}

TEST(Values, TextThatIsNoLabelSetIsRefusedAndLeavesTheSet) {
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
  for (const std::string& line : lines) {
    EXPECT_FALSE(Labels::setValueFromText(set, "LabelSet\n" + line)) << line;
    EXPECT_EQ(set, oddSet()) << line;
  }
  const std::string whole = Labels::Text(oddSet());
  for (std::size_t length = 1; length < whole.size(); ++length)
    EXPECT_EQ(Labels::setValueFromText(set, whole.substr(0, length)), whole[length - 1] == '\n') << length;
}

TEST(Values, AGermanLocaleChangesNothing) {
  if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "The locale de_DE.UTF-8 is not installed.";
  expectTexts<double>(7.5, {{"0.25", "0.25"}, {"0,25", ""}, {"1234567.5", "1234567.5"}});
  LabelSet set;
  set.labels[1] = {1, {0.5F, 0.25F, 0, 1}, "Boden", "", {}};
  EXPECT_EQ(Labels::Text(set), "LabelSet\nlabel\t1\t0.5\t0.25\t0\t1\tBoden\t\n");
  EXPECT_TRUE(Labels::setValueFromText(set, Labels::Text(set)));
  EXPECT_EQ(set.labels[1].color[1], 0.25F);
  std::setlocale(LC_ALL, "C");
}

} // namespace
} // namespace Zamt::Testing
