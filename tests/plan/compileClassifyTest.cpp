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

using Labels = std::map<std::int32_t, std::string>;

std::string labelText(const Labels& names) {
  LabelSet set;
  for (const auto& [number, name] : names) {
    set.labels[number].value = number;
    set.labels[number].name = name;
  }
  return VValueTrait<LabelSet>::Text(set);
}

const Labels some{{0, "Never"}, {2, "Ground"}, {4, ""}, {6, "Roof"}};

/// `expected` is the assigned class, then the labels; empty if the step is to be refused.
void expectPlan(const Labels& existing, const std::string& name, std::int32_t number,
                const std::vector<std::string>& selected, const std::string& expected,
                const std::string& said) {
  std::string planned = "untouched";
  std::int32_t assigned = 0;
  Diag diag;
  const bool ok = planClassLabels(existing.empty() ? "" : labelText(existing), name, number, selected, {},
                                  planned, assigned, diag);
  EXPECT_EQ(ok, !expected.empty()) << said;
  EXPECT_EQ(diag.format(), said);
  EXPECT_EQ(ok ? std::to_string(assigned) + ": " + shortForm(planned) : planned, ok ? expected : "untouched");
  EXPECT_EQ(assignedClassOf(ok ? planned : ""), ok ? assigned : -1);
}

TEST(planClassLabels, PlansWhatAStepNeeds) {
  const std::string adding = "note: Adding a class \"New\" with value ";
  const std::string four = "note: Class 4 is not named in this data; taking it as the number it is.";
  const std::string nine = "note: Class 09 is not named in this data; taking it as the number it is.";
  // The next free number, all others editable; then only those that are selected.
  expectPlan(some, "New", -3, {}, "7: 0 Never!, 2 Ground!, 4 !, 6 Roof!, 7 New?", adding + "7.");
  expectPlan(some, "Roof", 6, {"Ground"}, "6: 0 Never, 2 Ground!, 4 , 6 Roof", "");
  // An unnamed number is replaced, and numbers start at 1.
  expectPlan(some, "New", 4, {"Ground"}, "4: 0 Never, 2 Ground!, 4 New?, 6 Roof", adding + "4.");
  expectPlan({{0, "Never"}}, "New", -1, {"Never"}, "1: 0 Never!, 1 New?", adding + "1.");
  // Classes by numbers: one that has a name, two that have none, one found by the name it was given.
  expectPlan(some, "Roof", -1, {"2"}, "6: 0 Never, 2 Ground!, 4 , 6 Roof", "");
  expectPlan(some, "Roof", -1, {"4", "09"}, "6: 0 Never, 2 Ground, 4 Class 4!, 6 Roof, 9 Class 09!",
             four + "\n" + nine);
  expectPlan(some, "Roof", -1, {"4", "Class 4"}, "6: 0 Never, 2 Ground, 4 Class 4!, 6 Roof", four);
  expectPlan({}, "New", -1, {"4"}, "5: 4 Class 4!, 5 New?", four + "\n" + adding + "5.");
}

TEST(planClassLabels, SaysWhyAStepCannotBe) {
  const auto expectRefused = [](const Labels& existing, const std::string& name, std::int32_t number,
                                const std::vector<std::string>& selected, const std::string& said) {
    expectPlan(existing, name, number, selected, "", "error: " + said);
  };
  expectRefused(some, "New", 2, {},
                "Class 2 is already \"Ground\" in this data, so \"New\" cannot be given that number.");
  expectRefused(some, "Roof", 9, {},
                "This data already has a class called \"Roof\" numbered 6, so it cannot also be class 9.");
  expectRefused(some, "Ground", -1, {"Roof", "Ground"},
                "This puts the points into \"Ground\", which is class 2 - one of the classes it selects. "
                "That cannot change anything.");
  for (const std::string name : {"Wall", "2147483648"})
    expectRefused(some, "New", -1, {name},
                  "This data has no class called \"" + name +
                      "\", so selecting it can never match anything. It has: Never, Ground, Roof.");
  expectRefused({}, "New", -1, {"Wall"},
                "This classification has no classes defined at all, so selecting \"Wall\" by name cannot "
                "match anything. Either connect a label set to the editor, or name the class by its number.");
  expectRefused(some, "", -1, {}, "A classify step has to say which class to put the points into.");
  expectRefused(
      {{2147483647, "Last"}}, "New", -1, {},
      "This data has no class number left above its highest for \"New\". Give it a free one with \"as\".");
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
  LabelledScene scene;
  Diag diag;
  std::vector<std::string> bindings;
  std::string out = "untouched";
  bool ok = false;

  explicit Classify(const std::string& step, const std::string& params,
                    const std::set<std::string>& refused = {}) {
    scene.refused = refused;
    const QuindleDocument document = Testing::documentOf(step, params);
    std::vector<QuindleBinding> made;
    ok = compileClassify(document.triggers.at(0).steps.at(0), {"Ground"}, document, scene, "S", "P_", out,
                         made, diag);
    for (const QuindleBinding& binding : made)
      bindings.push_back(binding.object + '.' + binding.slot + (binding.connect ? " <- " : " = ") +
                         binding.param);
    for (std::string& call : scene.calls) // the text form is the platform's business
      if (call.starts_with("set P_classify.labels = ")) call.resize(call.find(" ="));
  }
};

TEST(compileClassify, AttachesTheEditorToTheFieldAndLabelsThatAreThere) {
  Classify made("classify into \"Roof\" as 3.7", "param g : Grid\nparam f : Field\n");
  EXPECT_TRUE(made.ok);
  EXPECT_EQ(made.out, "P_classify");
  EXPECT_EQ(made.diag.format(), "note: Adding a class \"Roof\" with value 3.");
  EXPECT_THAT(made.scene.calls, ElementsAre("create Edit/MaskedLabels P_classify",
                                            "connect P_classify.brush <- S", "set P_classify.labels"));
  EXPECT_EQ(shortForm(made.scene.objects["P_classify"].slots["labels"]), "2 Ground!, 3 Roof?");
  EXPECT_THAT(made.bindings, ElementsAre("P_classify.labelfield <- f"));
}

TEST(compileClassify, RefusesWhatItCannotCarryOut) {
  const char* const field = "param f : Field\n";
  const std::string noNumber = "The class number after \"as\" has to be a plain number.";
  const struct {
    const char* step;
    const char* params;
    std::string said;
  } cases[] = {{"classify into roof", field, "A classify step needs the name of a class in quotes."},
               {"classify into \"Roof\" as \"2\"", field, noNumber},
               {"classify into \"Roof\" as 2147483648", field, noNumber},
               {"classify into \"Roof\" as -1e300", field, noNumber},
               {"classify into \"Roof\"", "param o : Object\n",
                "This Quindle classifies points but never says which data to classify. Add a parameter of "
                "type Field for the classification itself, or of type Grid for the cloud it belongs to."}};
  for (const auto& [step, params, said] : cases) {
    const Classify refused(step, params);
    EXPECT_FALSE(refused.ok) << step;
    EXPECT_EQ(refused.diag.format(), ":5: error: " + said);
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
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"class(\" Ground , Low  Wall,,\") and inside(\"b\") and class(6)",
       {"before", "Ground", "Low  Wall", "6"}},
      {"not class(\"Ground\")", {"before"}},
      {"class(\"Ground\") or class(\"Roof\")", {"before"}},
      {"class(kinds) and class(\", ,\")", {"before"}}};
  for (const auto& [condition, classes] : cases) {
    std::vector<std::string> collected{"before"};
    collectPlanClasses(Testing::planOf(condition), collected);
    EXPECT_EQ(collected, classes) << condition;
  }
}

} // namespace
} // namespace Zamt
