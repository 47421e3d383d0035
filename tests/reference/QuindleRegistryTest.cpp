#include "quindle/reference/QuindleRegistry.h"

#include "quindle/plan/QuindleOperation.h"

#include "cadmer/VAction.h"
#include "sorbine/VCreator.h"
#include "sorbine/VObject.h"

#include <gmock/gmock.h>

namespace Zamt::Testing {

/// A value with a button in it.
struct Desk {
  Rethold::StrongPtr<VValueBase> button = std::make_shared<VValue<Rethold::StrongPtr<VAction>>>();
};

} // namespace Zamt::Testing

namespace Zamt {

template <>
struct VValueTrait<Testing::Desk> {
  static bool setValueFromText(Testing::Desk& /*value*/, const std::string& /*text*/) { return false; }
  static std::string Text(const Testing::Desk& /*value*/) { return {}; }
  static Rethold::StrongPtr<VValueBase> component(const Testing::Desk& value, const std::string& name) {
    return name == "button" ? value.button : nullptr;
  }
};

} // namespace Zamt

namespace Zamt::Testing {
namespace {

using Rethold::StrongPtr;
using ::testing::ElementsAre;
using ::testing::Pair;

class Lamp : public VObject {
  VInput<double> brightness_ = input<double>("brightness", "How bright it is.");
  StrongPtr<VSlot> light_ = action("light", "Lights the lamp.", [] {});
  StrongPtr<VSlot> dim_ = action("Dim Slowly", "", [] {});
};

/// Slots of odd shapes: a button inside a value, a nameless button, and slots that hold nothing.
class Drawer : public VObject {
public:
  Drawer() {
    const auto desk = std::make_shared<VParameter>(std::make_shared<VValue<Desk>>());
    addInput(std::make_shared<VSlot>("2nd", "Pulls.", desk, "button"));
    addInput(std::make_shared<VSlot>("gone", "", desk, "nothing"));
    addInput(std::make_shared<VSlot>("bare", "", nullptr));
    addInput(std::make_shared<VSlot>("hollow", "", std::make_shared<VParameter>(nullptr)));
    addInput(std::make_shared<VSlot>(
        "", "", std::make_shared<VParameter>(std::make_shared<VValue<StrongPtr<VAction>>>())));
  }
};

/// A creator at each border of maturity, and a lamp and a drawer in the scene.
class QuindleRegistryTest : public testing::Test {
public:
  QuindleRegistryTest() {
    VManagedObject::clear();
    for (const int rank : {2000, 1999, 0, -1, -1000, -1001})
      creator("Rank", std::to_string(rank), {.rank = rank, .shortHelp = {}, .longHelp = {}, .accepts = {}});
    lamps = creator(
        "Light", "Lamp",
        {.rank = 2000, .shortHelp = "Makes light.", .longHelp = "Makes light.\nA lot.", .accepts = {}});
    make(lamps, "lamp");
    VManagedObject::add(std::make_shared<Drawer>(), "drawer");
  }
  ~QuindleRegistryTest() override {
    VManagedObject::clear();
    for (const auto& each : creators) each->remove();
  }

  StrongPtr<VCreatorBase> creator(const std::string& category, const std::string& identifier,
                                  VCreatorInfo info) {
    creators.push_back(registerCreator<Lamp>(category, identifier, std::move(info)));
    return creators.back();
  }

  static void make(const StrongPtr<VCreatorBase>& from, const std::string& name) {
    ASSERT_NE(from->create(name, Rethold::Intercube()), nullptr);
  }

  std::vector<StrongPtr<VCreatorBase>> creators;
  StrongPtr<VCreatorBase> lamps;
};

TEST_F(QuindleRegistryTest, HoldsConditionsThenActionsThenCreatorsFromTheLevelUp) {
  const auto names = [](int level) {
    std::vector<std::string> found;
    for (const QuindleRegistryItem& item : collectQuindleRegistry(level))
      if (item.kind != 0) found.push_back(std::to_string(item.kind) + ' ' + item.name + ' ' + item.maturity);
    return found;
  };
  EXPECT_THAT(names(2000), ElementsAre("2 lamp.light ", "2 lamp.Dim Slowly ", "2 drawer.2nd ",
                                       "1 Rank/2000 mature", "1 Light/Lamp mature"));
  EXPECT_THAT(names(-2000),
              ElementsAre("2 lamp.light ", "2 lamp.Dim Slowly ", "2 drawer.2nd ", "1 Rank/-1001 unfinished",
                          "1 Rank/-1000 experimental", "1 Rank/-1 experimental", "1 Rank/0 beta",
                          "1 Rank/1999 beta", "1 Rank/2000 mature", "1 Light/Lamp mature"));
  VManagedObject::clear();
  const std::vector<QuindleRegistryItem> bare = collectQuindleRegistry(2001);
  ASSERT_EQ(bare.size(), allQuindleOperations().size());
  EXPECT_EQ(bare[2].name + '/' + bare[2].category + '/' + bare[2].summary,
            "below/Quindle conditions/Keep the points under a triangulated surface.");
}

TEST_F(QuindleRegistryTest, CategoriesAreCountedInOrderOfTheirBytes) {
  EXPECT_THAT(quindleRegistryCategories(0), ElementsAre(Pair("Actions in this scene", 3), Pair("Light", 1),
                                                        Pair("Quindle conditions", 9), Pair("Rank", 3)));
}

TEST_F(QuindleRegistryTest, PagesTellHowAWordIsWritten) {
  const std::string actionEnd =
      "()\n"
      "An action takes no arguments; the parentheses may be left off. It fires the same thing the button "
      "beside it in the GUI does, and it is assumed to change something - so a preview run leaves it out.\n"
      "\n"
      "This is an action of an object that exists right now. Save a Quindle that calls it and it will only "
      "run in a scene that has an object of that name again.\n";
  EXPECT_EQ(describeQuindleRegistry("lamp.light", 2000), "lamp.light\n"
                                                         "Category: Actions in this scene\n"
                                                         "\n"
                                                         "Lights the lamp.\n"
                                                         "\n"
                                                         "On object lamp, made by Light/Lamp.\n"
                                                         "\n"
                                                         "Write it as:\n"
                                                         "    call lamp.light" +
                                                             actionEnd);
  EXPECT_EQ(describeQuindleRegistry("lamp.Dim Slowly", 2000), "lamp.Dim Slowly\n"
                                                              "Category: Actions in this scene\n"
                                                              "\n"
                                                              "On object lamp, made by Light/Lamp.\n"
                                                              "\n"
                                                              "Write it as:\n"
                                                              "    call lamp.\"Dim Slowly\"" +
                                                                  actionEnd);
  EXPECT_EQ(describeQuindleRegistry("Light/Lamp", 2000),
            "Light/Lamp  [mature]\n"
            "Category: Light\n"
            "\n"
            "Makes light.\n"
            "A lot.\n"
            "\n"
            "Write it as:\n"
            "    create <name> = \"Light/Lamp\"\n"
            "and then set, connect or call whatever it turns out to have. What that is is a property of the "
            "object, not of the creator, so it can only be read once one exists.\n");
  EXPECT_EQ(describeQuindleRegistry("below", 5000), describeQuindleOperation("below"));
  EXPECT_EQ(describeQuindleRegistry("Rank/1999", 2000), "");
  EXPECT_EQ(describeQuindleRegistry("lamp", 0), "");
}

TEST_F(QuindleRegistryTest, ObjectsOutliveTheirCreator) {
  lamps->remove();
  creators.pop_back();
  lamps.reset();
  EXPECT_NE(describeQuindleRegistry("lamp.light", 0).find("\nOn object lamp, which no creator made.\n"),
            std::string::npos);
}

TEST_F(QuindleRegistryTest, ListsAreCutAtTheLimitAndSayWhatIsMissing) {
  const std::string more = "... and 2 more in this category, not shown.\n";
  EXPECT_EQ(listQuindleRegistry("Rank", 1, 0), "Rank/0  [beta]\n" + more);
  EXPECT_EQ(listQuindleRegistry("Rank", 3, 0), "Rank/0  [beta]\nRank/1999  [beta]\nRank/2000  [mature]\n");
  EXPECT_EQ(listQuindleRegistry("Rank", 0, 0), "... and 3 more in this category, not shown.\n");
  EXPECT_EQ(listQuindleRegistry("", 0, 0), "... and 16 more in this category, not shown.\n");
  EXPECT_EQ(listQuindleRegistry("rank", 9, 0), "");
}

TEST_F(QuindleRegistryTest, ActionsOutOfReachAreCountedAndThreeOfThemNamed) {
  VManagedObject::find<VObject>("drawer")->remove();
  const std::string reachable = "lamp.light  -  Lights the lamp.\nlamp.\"Dim Slowly\"\n";
  EXPECT_EQ(listQuindleRegistry(QuindleActionCategory, 9, 0), reachable);
  const std::string why =
      " a Quindle cannot name at all. A call step begins with one identifier, so an object whose name holds "
      "a "
      "space or a separator is out of reach; rename it. The action's own name may be anything, since that "
      "half can be written in quotes. Out of reach here: ";
  make(lamps, "desk lamp");
  EXPECT_EQ(listQuindleRegistry(QuindleActionCategory, 9, 0),
            reachable + "... and 2" + why + "desk lamp.light, desk lamp.Dim Slowly.\n");
  VManagedObject::add(std::make_shared<Drawer>(), "_drawer");
  EXPECT_EQ(listQuindleRegistry(QuindleActionCategory, 9, 0),
            reachable + "_drawer.2nd  -  Pulls.\n... and 3" + why +
                "desk lamp.light, desk lamp.Dim Slowly, _drawer..\n");
  make(lamps, "2nd");
  EXPECT_EQ(listQuindleRegistry(QuindleActionCategory, 0, 0),
            "... and 3 more in this category, not shown.\n... and 5" + why +
                "desk lamp.light, desk lamp.Dim Slowly, _drawer., ...\n");
}

TEST_F(QuindleRegistryTest, SummariesAreShortenedToOneLineOfWords) {
  struct Case {
    std::string summary;
    std::string shown;
  };
  const std::string hundred(100, 'x');
  const Case cases[] = {
      {"Two\nlines.", "Two ..."},
      {hundred, hundred},
      {hundred + "y", hundred + " ..."},
      {hundred + " y", hundred + " ..."},
      {std::string(60, 'a') + ' ' + std::string(60, 'b') + '\n', std::string(60, 'a') + " ..."},
      {' ' + hundred + hundred, " ..."},
  };
  for (const Case& each : cases) {
    const auto made =
        creator("Case", "C", {.rank = 0, .shortHelp = {}, .longHelp = each.summary, .accepts = {}});
    EXPECT_EQ(listQuindleRegistry("Case", 9, 0), "Case/C  [beta]  -  " + each.shown + '\n');
    made->remove();
    creators.pop_back();
  }
}

} // namespace
} // namespace Zamt::Testing
