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

TEST(VValueTest, TextsThatReadAsTheTypeAreTakenAndOthersLeaveTheValue) {
  expectTexts<double>(7.5,
                      {{"+2", "2"}, {"-1e5", "-100000"}, {"1e300", "1e+300"}, {".5", "0.5"}, {"inf", "inf"}});
  expectTexts<double>(7.5, {{"", ""}, {"+", ""}, {"+-1", ""}, {"1,5", ""}, {"1.5 m", ""}, {"1e999", ""}});
  expectTexts<float>(0.5F, {{"0.1", "0.1"}, {"x", ""}});
  expectTexts<std::int32_t>(
      4, {{"-2147483648", "-2147483648"}, {"+6", "6"}, {"2147483648", ""}, {"1.0", ""}, {"", ""}});
  expectTexts<bool>(true, {{"false", "false"}, {"true", "true"}, {"1", ""}, {"True", ""}, {"", ""}});
  expectTexts<std::string>("before", {{"any \n bytes", "any \n bytes"}});
  expectTexts<Rethold::StrongPtr<VAction>>(nullptr, {{"x", ""}});
}

TEST(VValueTest, DoublesSurviveTheirText) {
  for (const double number :
       {1.0 / 3, 1e15, 123456789012345678.0, 5e-324, -0.0, 0.1 + 0.2, std::numeric_limits<double>::max()}) {
    double read = 0;
    ASSERT_TRUE(VValueTrait<double>::setValueFromText(read, VValueTrait<double>::Text(number)));
    EXPECT_EQ(read, number);
  }
}

TEST(VValueTest, AGermanLocaleChangesNothing) {
  if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "The locale de_DE.UTF-8 is not installed.";
  expectTexts<double>(7.5, {{"0.25", "0.25"}, {"0,25", ""}, {"1234567.5", "1234567.5"}});
  LabelSet set;
  set.labels[1] = {1, {0.5F, 0.25F, 0, 1}, "Boden", "", {}};
  LabelSet read;
  EXPECT_EQ(VValueTrait<LabelSet>::Text(set), "LabelSet\nlabel\t1\t0.5\t0.25\t0\t1\tBoden\t\n");
  EXPECT_TRUE(VValueTrait<LabelSet>::setValueFromText(read, VValueTrait<LabelSet>::Text(set)));
  EXPECT_EQ(read, set);
  std::setlocale(LC_ALL, "C");
}

TEST(VValueTest, AMemberIsReadAndWrittenByItsNameAndAgesTheWhole) {
  VParameter parameter(std::make_shared<VValue<Panel>>());
  EXPECT_TRUE(parameter.setValueFromText("2", nullptr, "number"));
  EXPECT_EQ(parameter.getValueAsText(nullptr, "number", false), "2");
  EXPECT_GT(parameter.value()->age(), 0U);
  EXPECT_FALSE(parameter.setValueFromText("2", nullptr, "second"));
  EXPECT_EQ(parameter.getValueAsText(nullptr, "second", false), "");
}

} // namespace
} // namespace Zamt::Testing
