#include "host/session/ClassTable.h"
#include "tests/support/parsed.h"

#include <sstream>

namespace Zamt::Testing {
namespace {

using Host::ClassUse;
using Host::CloudClasses;

/// A file called "a.las" and the like; "6: 64 Mine, 65 Yours" in point format 6.
CloudClasses cloud(const std::string& file, const std::string& text) {
  std::istringstream words(text);
  CloudClasses made{file + ".las", 0, 255, {}};
  char separator = 0;
  words >> made.pointFormat >> separator;
  if (made.pointFormat < 6) made.highest = 31;
  int number = 0;
  for (std::string name; words >> number && std::getline(words >> std::ws, name, ',');)
    made.names.push_back({static_cast<std::uint8_t>(number), name});
  return made;
}

struct Case {
  std::string steps; ///< Of a Quindle on "a.las", "b.las" and so on.
  std::vector<std::string> clouds;
  std::string made;        ///< The labels that differ from the standard, the highest one, what is said.
  std::vector<int> used{}; ///< By points of "a.las".
  std::string nested{};    ///< The steps of "Other", which has a parameter "kinds".
  std::string value{};     ///< Of the parameter "kinds".
};

/// What is said of a case, and which labels it ends with.
std::string madeOf(const Case& one) {
  const std::string head = "param cloud : Grid = active param kinds : Text = \"Ground\"";
  QuindleDocument other = parsedRun(one.nested, head);
  other.sourceFile = "other.quindle";
  const QuindleResolver resolver = [&](const std::string& name, QuindleDocument& document, std::string&) {
    document = other;
    return name == "Other";
  };
  std::vector<CloudClasses> clouds;
  for (const std::string& text : one.clouds)
    clouds.push_back(cloud(std::string(1, static_cast<char>('a' + clouds.size())), text));
  const auto findUse = [&](ClassUse& use) {
    for (const int number : one.used) use.at(static_cast<std::size_t>(number)) = "a.las";
    return true;
  };
  std::map<std::string, std::string> values;
  if (!one.value.empty()) values["kinds"] = one.value;
  LabelSet labels;
  Diag diag;
  Host::makeClassTable(clouds, Host::saidClasses(parsedRun(one.steps, head), values, resolver), findUse,
                       labels, diag);
  std::string text;
  if (diag.errorCount == 0) {
    LabelSet standard;
    Diag none;
    Host::makeClassTable({}, {}, findUse, standard, none);
    for (const auto& [number, label] : labels.labels)
      if (label.name != standard.labels[number].name)
        text += std::to_string(number) + ' ' + (label.name.empty() ? "-" : label.name) + ", ";
    text += "to " + std::to_string(labels.labels.rbegin()->first) + '\n';
  }
  return text + diag.format();
}

const std::string mine = "classify into \"Mine\"";

TEST(ClassTable, HoldsWhatFilesDefineThenTheStandardAndKeepsNewNumbersFree) {
  const Case cases[] = {
      {mine, {"6:"}, "to 63\n"},
      {mine, {"1:"}, "to 22\n"},
      {mine, {"1: 25 Stone"}, "25 Stone, to 25\n"},
      {mine, {"6:", "1:"}, "to 22\n"},
      {mine, {"6: 70 Stone", "1:"}, "to 22\n"},
      {"select class(\"Stone\")", {"6: 70 Stone", "1:"}, "70 Stone, to 70\n"},
      {mine, {"6:", "6: 64 Mine"}, "64 Mine, to 64\n"},
      {mine, {"6: 6 Roof"}, "6 Roof, to 63\n"},
      {mine, {"6: 40 Building"}, "6 -, 40 Building, to 63\n"},
      {mine, {"6:"}, "to 65\n", {64, 65}},
      {mine + "\nclassify into \"Yours\"", {"1:"}, "to 24\n", {24}},
      {"classify into \"Mine\" as 64",
       {"6:"},
       "to 63\ntest.quindle:2: warning: Points of \"a.las\" are in class 64 already, under no name. They "
       "will "
       "be \"Mine\" as well.",
       {64}},
      {"classify into \"Mine\" as 64", {"6: 64 Mine"}, "64 Mine, to 64\n", {64}},
      {mine + "\nclassify into \"Yours\" as 64", {"6:"}, "to 64\n"},
      {mine + "\nclassify into \"Yours\" as 70\nclassify into \"Last\"", {"6:"}, "to 64\n", {64}},
      {mine,
       {"1: 31 Last"},
       "test.quindle:2: error: There is no class number left for \"Mine\" behind those that are named or in "
       "use: points of "
       "\"a.las\" can be in classes up to 31. Give it a free one with \"as\"."},
      {"select class(\"Ground under the trees\")",
       {"1: 25 Ground under th"},
       "25 Ground under the trees, to 25\n"},
  };
  for (const Case& one : cases) EXPECT_EQ(madeOf(one), one.made) << one.steps << " on " << one.clouds[0];
}

TEST(ClassTable, LetsTheStandardGiveWayToWhatIsWrittenUnlessPointsAreInIt) {
  const std::string number =
      "test.quindle:2: warning: The standard makes \"Rail\" class 10. Here it is class "
      "40, as is written.";
  const std::string name = "test.quindle:2: warning: The standard calls class 10 \"Rail\". Here it is "
                           "\"Mine\", as is written.";
  const std::string stays =
      "test.quindle:2: note: Class 10 stays \"Rail\", as in the standard: points of \"a.las\" are in it.";
  const Case cases[] = {
      {"classify into \"Rail\" as 40", {"6:"}, "10 -, to 63\n" + number},
      {"classify into \"Rail\" as 40", {"6:"}, "to 63\n" + stays, {10}},
      {"classify into \"Rail\" as 40", {"6: 10 Rail"}, "to 63\n"},
      {"classify into \"Mine\" as 10", {"6:"}, "10 -, to 63\n" + name},
      {"classify into \"Mine\" as 10", {"6:"}, "to 63\n" + stays, {10}},
      {"classify into \"Mine\" as 10", {"6: 10 Mine"}, "10 Mine, to 63\n"},
      {"classify into \"Rail\" as 10", {"1:"}, "to 22\n"},
      {"select class(\"Low Point\")", {"6:"}, "7 Low Point, to 63\n"},
      {"classify into \"Overlap\"", {"1:"}, "12 Overlap, to 22\n"},
      {"select class(kinds)", {"6: 7 Low Noise"}, "7 Low Point, to 63\n", {}, {}, "Low Point, 3"},
      {"classify into \"Overlap\" as 30",
       {"6:"},
       "to 63\ntest.quindle:2: warning: The standard makes \"Overlap\" class 12. Here it is class 30, as is "
       "written."},
      {"classify into \"Building\"",
       {"6: 6 Roof"},
       "6 Roof, to 63\ntest.quindle:2: warning: The standard makes \"Building\" class 6, which \"a.las\" "
       "calls "
       "\"Roof\": here it is a class of its own. Write \"Roof\" if that is meant."},
  };
  for (const Case& one : cases) EXPECT_EQ(madeOf(one), one.made) << one.steps << " on " << one.clouds[0];
}

TEST(ClassTable, RefusesContradictionsOnlyWhereAQuindleMeetsThem) {
  const std::vector<std::string> numbers{"6: 64 Mine, 70 Stone", "6: 65 Mine, 70 Stone"};
  const std::vector<std::string> names{"6: 64 Roof", "6: 64 Wall"};
  const std::string advice = "Work on them in two commands, or have one of them name it as the other.";
  const std::string numbered =
      "error: \"Mine\" is class 64 in \"a.las\" and class 65 in \"b.las\". " + advice;
  const std::string named =
      "error: \"a.las\" calls class 64 \"Roof\", and \"b.las\" calls it \"Wall\". " + advice;
  const std::string line = "test.quindle:2: ";
  const Case cases[] = {
      {"select class(\"Stone\")", numbers, "70 Stone, to 70\n"},
      {"classify into \"New\"", names, "to 64\n"},
      {mine, numbers, line + numbered},
      {"classify into \"Other\" as 65", numbers, line + numbered},
      {"select Intensity > 65", numbers, "70 Stone, to 70\n"},
      {"select Classification == 65", numbers, line + numbered},
      {"select expr(\"Classification = 65 or z > 64\")", numbers, line + numbered},
      {"select not class(\"Ground, 64\")", names, line + named},
      {"select class(kinds)", names, named, {}, {}, "Ground,Wall"},
      {"let all = \"Wall\"\nrun \"Other\"(kinds: all)", names, line + named, {}, "select class(kinds)"},
      {"run \"Other\"(kinds: \"Wall\")", names, "to 64\n", {}, "report \"{kinds}\""},
      {"run \"Other\"(kinds: \"Ground\")", names, "other.quindle:2: " + named, {}, "classify into \"Roof\""},
  };
  for (const Case& one : cases) EXPECT_EQ(madeOf(one), one.made) << one.steps << " with " << one.nested;
}

TEST(ClassTable, RefusesOneNumberUnderTwoNames) {
  const std::string way = " in one run. Write the same name in both places, or another number.";
  const Case cases[] = {
      {"classify into \"A\" as 30\nrun \"Other\"()",
       {"6:"},
       "other.quindle:2: error: Class 30 is called \"A\" (test.quindle:2) and \"B\"" + way,
       {},
       "classify into \"B\" as 30"},
      {"select class(\"Low Point\")\nclassify into \"Low Noise\"",
       {"6:"},
       "test.quindle:3: error: Class 7 is called \"Low Point\" (test.quindle:2) and \"Low Noise\"" + way},
      {"select class(\"Rail\")\nclassify into \"Mine\" as 10",
       {"6:"},
       "test.quindle:3: error: Class 10 is called \"Rail\" (test.quindle:2) and \"Mine\"" + way},
      {"classify into \"A\" as 30\nrun \"Other\"()", {"6:"}, "to 63\n", {}, "classify into \"A\" as 30"},
  };
  for (const Case& one : cases) EXPECT_EQ(madeOf(one), one.made) << one.steps;
}

} // namespace
} // namespace Zamt::Testing
