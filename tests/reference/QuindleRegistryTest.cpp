#include "quindle/reference/QuindleRegistry.h"

#include "quindle/plan/QuindleOperation.h"

#include "cadmer/VAction.h"
#include "sorbine/VCreator.h"
#include "sorbine/VObject.h"
#include "tests/support/Panel.h"
#include "tests/support/goldenCases.h"

namespace Zamt::Testing {
namespace {

using Rethold::StrongPtr;

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

/// All but the conditions, from the level up.
std::string namesFrom(int level) {
  std::string found;
  for (const QuindleRegistryItem& item : collectQuindleRegistry(level))
    if (item.kind != 0) found += item.name + ' ' + item.maturity + '\n';
  return found;
}

std::string categoriesFrom(int level) {
  std::string found;
  for (const auto& [name, count] : quindleRegistryCategories(level))
    found += name + ": " + std::to_string(count) + '\n';
  return found;
}

TEST_F(QuindleRegistryTest, TellsWhatTheGoldenDocumentShows) {
  expectCases("reference/golden/registry.md", [this](const std::string& text) {
    std::istringstream words(text);
    std::string verb, name;
    int level = 0;
    std::uint64_t limit = 0;
    words >> verb >> level;
    if (verb == "names") return namesFrom(level);
    if (verb == "categories") return categoriesFrom(level);
    if (verb == "list") words >> limit;
    words.get();
    std::getline(words, name);
    if (verb == "list") return listQuindleRegistry(name, limit, level);
    if (verb == "describe") return describeQuindleRegistry(name, level);
    EXPECT_EQ(verb, "make");
    make(name);
    return std::string();
  });
  EXPECT_EQ(collectQuindleRegistry(0).front().name, "class");
  EXPECT_EQ(describeQuindleRegistry("below", 5000), describeQuindleOperation("below"));
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
