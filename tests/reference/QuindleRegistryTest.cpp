#include "quindle/reference/QuindleRegistry.h"

#include "quindle/plan/QuindleOperation.h"

#include "cadmer/VAction.h"
#include "sorbine/VCreator.h"
#include "sorbine/VObject.h"
#include "tests/support/Panel.h"

#include <gmock/gmock.h>

namespace Zamt::Testing {
namespace {

using Rethold::StrongPtr;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Pair;
using ::testing::StartsWith;

class Lamp : public VObject {
  VInput<double> brightness_ = input<double>("brightness", "How bright it is.");
  StrongPtr<VSlot> light_ = action("light", "Lights the lamp.", [] {});
  StrongPtr<VSlot> dim_ = action("Dim Slowly", "", [] {});
};

/// Slots that hold nothing, a nameless button, and one that is a member of a panel.
class Drawer : public VObject {
public:
  Drawer() {
    const auto panel = std::make_shared<VValue<Panel>>();
    panel->held.button = std::make_shared<VValue<StrongPtr<VAction>>>();
    for (const char* const member : {"button", "number"})
      addInput(std::make_shared<VSlot>(member, "", std::make_shared<VParameter>(panel), member));
    addInput(std::make_shared<VSlot>("bare", "", nullptr));
    addInput(std::make_shared<VSlot>("hollow", "", std::make_shared<VParameter>(nullptr)));
  }
  StrongPtr<VSlot> pull_ = action("2nd", "Pulls.", [] {});
  StrongPtr<VSlot> nameless_ = action("", "", [] {});
};

/// A creator at each border of maturity, and in the scene a lamp, and a drawer that no creator made.
class QuindleRegistryTest : public testing::Test {
public:
  QuindleRegistryTest() {
    VManagedObject::clear();
    for (const int rank : {1999, 0, -1, -1000, -1001}) creator("Rank", std::to_string(rank), rank, {});
    creator("", "Stray", 3000, {}, "Belongs nowhere.");
    lamps = creator("Light", "Lamp", 2000, "Makes light.\nA lot.");
    make("lamp");
    VManagedObject::add(std::make_shared<Drawer>(), "drawer");
  }
  ~QuindleRegistryTest() override {
    VManagedObject::clear();
    for (const auto& each : creators) each->remove();
  }

  StrongPtr<VCreatorBase> creator(const std::string& category, const std::string& identifier, int rank,
                                  const std::string& help, const std::string& shortHelp = {}) {
    creators.push_back(registerCreator<Lamp>(
        category, identifier, {.rank = rank, .shortHelp = shortHelp, .longHelp = help, .accepts = {}}));
    return creators.back();
  }

  void make(const std::string& name) const { lamps->create(name, Rethold::Intercube()); }

  std::vector<StrongPtr<VCreatorBase>> creators;
  StrongPtr<VCreatorBase> lamps;
};

TEST_F(QuindleRegistryTest, HoldsConditionsThenActionsThenCreatorsFromTheLevelUp) {
  const auto names = [](int level) {
    std::string found;
    for (const QuindleRegistryItem& item : collectQuindleRegistry(level))
      if (item.kind != 0) found += item.name + ' ' + item.maturity + '\n';
    return found;
  };
  const std::string actions = "lamp.light \nlamp.Dim Slowly \ndrawer.2nd \ndrawer.button \n";
  EXPECT_EQ(names(2000), actions + "Light/Lamp mature\n/Stray mature\n");
  EXPECT_EQ(names(-2000), actions + "Rank/-1001 unfinished\nRank/-1000 experimental\nRank/-1 experimental\n"
                                    "Rank/0 beta\nRank/1999 beta\nLight/Lamp mature\n/Stray mature\n");
  EXPECT_EQ(collectQuindleRegistry(0).front().name, "class");
}

TEST_F(QuindleRegistryTest, CategoriesAreCountedInOrderOfTheirBytes) {
  EXPECT_THAT(quindleRegistryCategories(0), ElementsAre(Pair("Actions in this scene", 4), Pair("Light", 1),
                                                        Pair("Quindle conditions", 9), Pair("Rank", 2)));
}

TEST_F(QuindleRegistryTest, PagesTellHowAWordIsWritten) {
  EXPECT_EQ(describeQuindleRegistry("lamp.Dim Slowly", 2000),
            "lamp.Dim Slowly\nCategory: Actions in this scene\n\nOn object lamp, made by Light/Lamp.\n\n"
            "Write it as:\n    call lamp.\"Dim Slowly\"()\n"
            "An action takes no arguments; the parentheses may be left off. It fires the same thing the "
            "button beside it in the GUI does, and it is assumed to change something - so a preview run "
            "leaves it out.\n\n"
            "This is an action of an object that exists right now. Save a Quindle that calls it and it will "
            "only run in a scene that has an object of that name again.\n");
  EXPECT_THAT(describeQuindleRegistry("drawer.2nd", 2000),
              HasSubstr("\n\nPulls.\n\nOn object drawer, which no creator made.\n\nWrite it as:\n    call "
                        "drawer.2nd()\n"));
  EXPECT_EQ(describeQuindleRegistry("Light/Lamp", 2000),
            "Light/Lamp  [mature]\nCategory: Light\n\nMakes light.\nA lot.\n\n"
            "Write it as:\n    create <name> = \"Light/Lamp\"\n"
            "and then set, connect or call whatever it turns out to have. What that is is a property of the "
            "object, not of the creator, so it can only be read once one exists.\n");
  EXPECT_THAT(describeQuindleRegistry("/Stray", 2000),
              StartsWith("/Stray  [mature]\n\nBelongs nowhere.\n\nWrite it as:\n"));
  EXPECT_EQ(describeQuindleRegistry("below", 5000), describeQuindleOperation("below"));
  EXPECT_EQ(describeQuindleRegistry("Rank/1999", 2000), "");
  EXPECT_EQ(describeQuindleRegistry("lamp", 0), "");
}

TEST_F(QuindleRegistryTest, ListsAreCutAtTheLimitAndSayWhatIsMissing) {
  EXPECT_EQ(listQuindleRegistry("Rank", 1, 0),
            "Rank/0  [beta]\n... and 1 more in this category, not shown.\n");
  EXPECT_EQ(listQuindleRegistry("Rank", 2, 0), "Rank/0  [beta]\nRank/1999  [beta]\n");
  EXPECT_EQ(listQuindleRegistry("", 0, 0), "... and 17 more in this category, not shown.\n");
}

TEST_F(QuindleRegistryTest, ActionsOutOfReachAreCountedAndThreeOfThemNamed) {
  const std::string reachable =
      "lamp.light  -  Lights the lamp.\nlamp.\"Dim Slowly\"\ndrawer.2nd  -  Pulls.\ndrawer.button\n";
  const std::string why =
      " a Quindle cannot name at all. A call step begins with one identifier, so an object whose name holds "
      "a "
      "space or a separator is out of reach; rename it. The action's own name may be anything, since that "
      "half can be written in quotes. Out of reach here: drawer., desk lamp.light, desk lamp.Dim Slowly";
  make("desk lamp");
  EXPECT_EQ(listQuindleRegistry(QuindleActionCategory, 9, 0), reachable + "... and 3" + why + ".\n");
  make("2nd");
  EXPECT_EQ(listQuindleRegistry(QuindleActionCategory, 0, 0),
            "... and 4 more in this category, not shown.\n... and 5" + why + ", ...\n");
}

TEST_F(QuindleRegistryTest, SummariesAreShortenedToOneLineOfWords) {
  const std::string hundred(100, 'x');
  const std::pair<std::string, std::string> cases[] = {
      {"Two\nlines.", "Two ..."},
      {hundred, hundred},
      {hundred + "y", hundred + " ..."},
      {std::string(60, 'a') + ' ' + std::string(60, 'b') + '\n', std::string(60, 'a') + " ..."},
      {' ' + hundred + hundred, " ..."},
      {std::string(50, 'a') + ' ' + std::string(49, 'b') + " c",
       std::string(50, 'a') + ' ' + std::string(49, 'b') + " ..."},
  };
  for (const auto& [summary, shown] : cases) {
    const auto made = creator("Case", "C", 0, summary);
    EXPECT_EQ(listQuindleRegistry("Case", 9, 0), "Case/C  [beta]  -  " + shown + '\n');
    made->remove();
    creators.pop_back();
  }
}

} // namespace
} // namespace Zamt::Testing
