#include "cadmer/LabelSet.h"

#include "quindle/plan/compileClassify.h"
#include "tests/plan/planText.h"
#include "tests/support/RecordingScene.h"

#include <gmock/gmock.h>

namespace Zamt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Testing::RecordingScene;

/// Labels as "number name" with a "!" behind those that may be changed, and "?" behind those that do not say.
std::string shortForm(const std::string& text) {
  LabelSet set;
  EXPECT_TRUE(VValueTrait<LabelSet>::setValueFromText(set, text));
  std::string out;
  for (const auto& [number, label] : set.labels) {
    EXPECT_EQ(label.value, number);
    const auto editable = label.flags.find("editable");
    out += (out.empty() ? "" : ", ") + std::to_string(number) + ' ' + label.name;
    out += editable == label.flags.end() ? "?" : editable->second ? "!" : "";
  }
  return out;
}

std::string labelText(const std::map<std::int32_t, std::string>& names) {
  LabelSet set;
  for (const auto& [number, name] : names) {
    set.labels[number].value = number;
    set.labels[number].name = name;
  }
  return VValueTrait<LabelSet>::Text(set);
}

struct LabelCase {
  const char* promise;
  std::map<std::int32_t, std::string> existing; ///< empty: the data has no label set
  const char* className;
  std::int32_t number;
  std::vector<std::string> selected;
  std::int32_t assigned; ///< 0: refused
  const char* planned;
  const char* said;
};

TEST(planClassLabels, PlansWhatAStepNeeds) {
  const std::map<std::int32_t, std::string> some{{0, "Never"}, {2, "Ground"}, {4, ""}, {6, "Roof"}};
  const LabelCase cases[] = {
      {"the next free number, all others editable",
       some,
       "New",
       -3,
       {},
       7,
       "0 Never!, 2 Ground!, 4 !, 6 Roof!, 7 New?",
       "note: Adding a class \"New\" with value 7."},
      {"only selected classes are editable",
       some,
       "Roof",
       6,
       {"Ground"},
       6,
       "0 Never, 2 Ground!, 4 , 6 Roof",
       ""},
      {"an unnamed number is replaced",
       some,
       "New",
       4,
       {"Ground"},
       4,
       "0 Never, 2 Ground!, 4 New?, 6 Roof",
       "note: Adding a class \"New\" with value 4."},
      {"a class by a number that has a name",
       some,
       "Roof",
       -1,
       {"2"},
       6,
       "0 Never, 2 Ground!, 4 , 6 Roof",
       ""},
      {"classes by numbers that have none",
       some,
       "Roof",
       -1,
       {"4", "09"},
       6,
       "0 Never, 2 Ground, 4 Class 4!, 6 Roof, 9 Class 09!",
       "note: Class 4 is not named in this data; taking it as the number it is.\n"
       "note: Class 09 is not named in this data; taking it as the number it is."},
      {"a number named on the way is found by its new name",
       some,
       "Roof",
       -1,
       {"4", "Class 4"},
       6,
       "0 Never, 2 Ground, 4 Class 4!, 6 Roof",
       "note: Class 4 is not named in this data; taking it as the number it is."},
      {"no labels, one class selected by number",
       {},
       "New",
       -1,
       {"6"},
       7,
       "6 Class 6!, 7 New?",
       "note: Class 6 is not named in this data; taking it as the number it is.\n"
       "note: Adding a class \"New\" with value 7."},
      {"numbers start at 1",
       {{0, "Never"}},
       "New",
       -1,
       {"Never"},
       1,
       "0 Never!, 1 New?",
       "note: Adding a class \"New\" with value 1."},
      {"a number taken by another",
       some,
       "New",
       2,
       {},
       0,
       "",
       "error: Class 2 is already \"Ground\" in this data, so \"New\" cannot be given that number."},
      {"another number than it has",
       some,
       "Roof",
       9,
       {},
       0,
       "",
       "error: This data already has a class called \"Roof\" numbered 6, so it cannot also be class 9."},
      {"a class into itself",
       some,
       "Ground",
       -1,
       {"Roof", "Ground"},
       0,
       "",
       "error: This puts the points into \"Ground\", which is class 2 - one of the classes it selects. That "
       "cannot change anything."},
      {"a class that is not there",
       some,
       "New",
       -1,
       {"Wall"},
       0,
       "",
       "error: This data has no class called \"Wall\", so selecting it can never match anything. It has: "
       "Never, "
       "Ground, Roof."},
      {"a number that no class can have",
       some,
       "New",
       -1,
       {"2147483648"},
       0,
       "",
       "error: This data has no class called \"2147483648\", so selecting it can never match anything. It "
       "has: "
       "Never, Ground, Roof."},
      {"a name without any labels",
       {},
       "New",
       -1,
       {"Wall"},
       0,
       "",
       "error: This classification has no classes defined at all, so selecting \"Wall\" by name cannot match "
       "anything. Either connect a label set to the editor, or name the class by its number."},
      {"no name",
       some,
       "",
       -1,
       {},
       0,
       "",
       "error: A classify step has to say which class to put the points into."},
      {"no number left",
       {{2147483647, "Last"}},
       "New",
       -1,
       {},
       0,
       "",
       "error: This data has no class number left above its highest for \"New\". Give it a free one with "
       "\"as\"."},
  };
  for (const LabelCase& c : cases) {
    SCOPED_TRACE(c.promise);
    std::string planned = "untouched";
    std::int32_t assigned = 0;
    Diag diag;
    const bool ok = planClassLabels(c.existing.empty() ? "" : labelText(c.existing), c.className, c.number,
                                    c.selected, {}, planned, assigned, diag);
    EXPECT_EQ(ok, c.assigned != 0);
    EXPECT_EQ(diag.format(), c.said);
    EXPECT_EQ(assigned, c.assigned);
    EXPECT_EQ(ok ? shortForm(planned) : planned, ok ? c.planned : "untouched");
    if (ok) {
      EXPECT_EQ(assignedClassOf(planned), c.assigned);
    }
  }
  EXPECT_EQ(assignedClassOf(""), -1);
}

TEST(planClassLabels, OpensAllClassesOfAByteWhereNothingIsKnown) {
  for (const auto& [number, labels, target] : {std::tuple{-1, 256U, 1}, std::tuple{300, 257U, 300}}) {
    std::string planned;
    std::int32_t assigned = 0;
    Diag diag;
    ASSERT_TRUE(planClassLabels("", "Ground", number, {}, {}, planned, assigned, diag));
    LabelSet set;
    ASSERT_TRUE(VValueTrait<LabelSet>::setValueFromText(set, planned));
    EXPECT_EQ(set.labels.size(), labels);
    EXPECT_EQ(assigned, target);
    EXPECT_TRUE(set.labels[255].flags["editable"]);
    EXPECT_EQ(set.labels[target].name, "Ground");
  }
}

TEST(planClassLabels, TakesColoursOfThreeOrFourNumbers) {
  using Colour = std::array<float, 4>;
  const struct {
    std::vector<double> written;
    Colour colour;
  } cases[] = {{{1, 0, 0}, {1, 0, 0, 1}},
               {{1, 0, 0, 0.5}, {1, 0, 0, 0.5F}},
               {{1, 0}, {0.5F, 0.5F, 0.5F, 1}},
               {{1e300, 0, 0}, {std::numeric_limits<float>::max(), 0, 0, 1}}};
  for (const auto& [written, colour] : cases) {
    QuindleValue tuple;
    tuple.kind = QuindleValue::Kind::Tuple;
    for (const double item : written) tuple.items.push_back(QuindleValue::number(item));
    std::string planned;
    std::int32_t assigned = 0;
    Diag diag;
    ASSERT_TRUE(planClassLabels("", "New", 9, {"1"}, tuple, planned, assigned, diag));
    LabelSet set;
    ASSERT_TRUE(VValueTrait<LabelSet>::setValueFromText(set, planned));
    EXPECT_EQ(set.labels[9].color, colour);
  }
}

/// A scene whose editor finds labels as soon as it is attached.
class LabelledScene : public RecordingScene {
public:
  bool connect(const std::string& object, const std::string& slot, const std::string& source,
               const std::string& sourceSlot, Diag& diag) override {
    if (slot == "brush") objects[object].slots["labels"] = labelText({{2, "Ground"}});
    return RecordingScene::connect(object, slot, source, sourceSlot, diag);
  }
};

struct Classify {
  RecordingScene scene;
  Diag diag;
  std::vector<QuindleBinding> bindings;
  std::string out = "untouched";
  bool ok = false;

  explicit Classify(const std::string& step, const std::string& params,
                    const std::set<std::string>& refused = {}) {
    scene.refused = refused;
    const QuindleDocument document = Testing::documentOf(step, params);
    ok = compileClassify(document.triggers.at(0).steps.at(0), {"6"}, document, scene, "S", "P_", out,
                         bindings, diag);
    for (std::string& call : scene.calls) // the text form is the platform's business
      if (call.starts_with("set P_classify.labels = ")) call.resize(call.find(" ="));
  }
};

TEST(compileClassify, AttachesTheEditorToTheFieldThatTheQuindleNames) {
  const Classify made("classify into \"Roof\" as 2.7", "param g : Grid\nparam f : Field\n");
  EXPECT_TRUE(made.ok);
  EXPECT_EQ(made.out, "P_classify");
  EXPECT_EQ(made.diag.format(), "note: Class 6 is not named in this data; taking it as the number it is.\n"
                                "note: Adding a class \"Roof\" with value 2.");
  EXPECT_THAT(made.scene.calls, ElementsAre("create Edit/MaskedLabels P_classify",
                                            "connect P_classify.brush <- S", "set P_classify.labels"));
  ASSERT_EQ(made.bindings.size(), 1U);
  EXPECT_EQ(made.bindings[0].object + '.' + made.bindings[0].slot + '=' + made.bindings[0].param,
            "P_classify.labelfield=f");
  EXPECT_TRUE(made.bindings[0].connect);
}

TEST(compileClassify, ReadsTheUsualFieldOfACloud) {
  const Classify made("classify into \"Roof\"", "param g : Grid\n");
  EXPECT_THAT(made.scene.calls,
              ElementsAre("create Edit/MaskedLabels P_classify", "connect P_classify.brush <- S",
                          "set P_classify.labels", "create Lattix/Field P_classfield",
                          "set P_classfield.fieldname = Classification@Classification",
                          "connect P_classify.labelfield <- P_classfield.field"));
  ASSERT_EQ(made.bindings.size(), 1U);
  EXPECT_EQ(made.bindings[0].object + '.' + made.bindings[0].slot + '=' + made.bindings[0].param,
            "P_classfield.grid=g");
}

TEST(compileClassify, StartsFromTheLabelsThatTheAttachedDataBrings) {
  LabelledScene scene;
  const QuindleDocument document = Testing::documentOf("classify into \"Roof\"", "param f : Field\n");
  std::vector<QuindleBinding> bindings;
  std::string out;
  Diag diag;
  ASSERT_TRUE(compileClassify(document.triggers[0].steps[0], {"Ground"}, document, scene, "S", "P_", out,
                              bindings, diag));
  EXPECT_EQ(shortForm(scene.objects["P_classify"].slots["labels"]), "2 Ground!, 3 Roof?");
}

TEST(compileClassify, RefusesWhatItCannotCarryOut) {
  const char* const field = "param f : Field\n";
  const struct {
    const char* step;
    const char* params;
    const char* said;
  } cases[] = {
      {"classify into roof", field, ":5: error: A classify step needs the name of a class in quotes."},
      {"classify into \"Roof\" as \"2\"", field,
       ":5: error: The class number after \"as\" has to be a plain number."},
      {"classify into \"Roof\" as 2147483648", field,
       ":5: error: The class number after \"as\" has to be a plain number."},
      {"classify into \"Roof\" as -1e300", field,
       ":5: error: The class number after \"as\" has to be a plain number."},
      {"classify into \"Roof\"", "param o : Object\n",
       ":5: error: This Quindle classifies points but never says which data to classify. Add a parameter of "
       "type "
       "Field for the classification itself, or of type Grid for the cloud it belongs to."},
  };
  for (const auto& [step, params, said] : cases) {
    const Classify refused(step, params);
    EXPECT_FALSE(refused.ok) << step;
    EXPECT_EQ(refused.diag.format(), said);
    EXPECT_THAT(refused.scene.calls, IsEmpty());
    EXPECT_EQ(refused.out, "untouched");
  }
}

TEST(compileClassify, StopsWhereTheSceneRefuses) {
  for (const char* call :
       {"create Edit/MaskedLabels P_classify", "connect P_classify.brush <- S",
        "create Lattix/Field P_classfield", "set P_classfield.fieldname = Classification@Classification",
        "connect P_classify.labelfield <- P_classfield.field"}) {
    const Classify stopped("classify into \"Roof\"", "param g : Grid\n", {call});
    EXPECT_FALSE(stopped.ok) << call;
    EXPECT_EQ(stopped.scene.calls.back(), call);
    EXPECT_EQ(stopped.out, "untouched");
    EXPECT_THAT(stopped.bindings, IsEmpty());
  }
}

TEST(collectPlanClasses, ListsWhatEverySelectedPointHasToBe) {
  const struct {
    const char* condition;
    std::vector<std::string> classes;
  } cases[] = {
      {"class(\" Ground , Low  Wall,,\") and inside(\"b\") and class(6)", {"Ground", "Low  Wall", "6"}},
      {"not class(\"Ground\")", {}},
      {"class(\"Ground\") or class(\"Roof\")", {}},
      {"class(kinds) and class(\", ,\")", {}},
      {"field(\"Ground\")", {}}};
  for (const auto& [condition, classes] : cases) {
    std::vector<std::string> collected{"before"};
    collectPlanClasses(Testing::planOf(condition), collected);
    collected.erase(collected.begin());
    EXPECT_EQ(collected, classes) << condition;
  }
}

TEST(isQuindleObjectType, IsTrueOfTheFourTypesThatCarryObjects) {
  for (const char* type : {"Grid", "Field", "Region", "Brush"}) EXPECT_TRUE(isQuindleObjectType(type));
  for (const char* type : {"Object", "grid", "Surface", ""}) EXPECT_FALSE(isQuindleObjectType(type));
}

} // namespace
} // namespace Zamt
