#include "sorbine/VManagedObject.h"

#include "sorbine/VCreator.h"
#include "sorbine/VObject.h"
#include "sorbine/VScheduler.h"

#include <gmock/gmock.h>

namespace Zamt::Testing {
namespace {

using ::testing::ElementsAre;

class Link : public VObject {
public:
  VInput<double> in = input<double>("value", "What comes in.", 0.0);
  VOutput<double> out = output<double>("value", "One more than what comes in.");

private:
  void compute() override { out.publish(in.get() + 1); }
};

class VManagedObjectTest : public ::testing::Test {
protected:
  static Rethold::StrongPtr<Link> addLink(const std::string& name, int rank = 0) {
    auto link = std::make_shared<Link>();
    VManagedObject::add(link, name, rank);
    return link;
  }
  static std::vector<std::string> walk(int lowest = LowestRank, int highest = HighestRank) {
    std::vector<std::string> names;
    const auto note = [&](int /*rank*/, const auto& /*object*/, const std::string& name) {
      names.push_back(name);
      return true;
    };
    VManagedObject::iterate(Rethold::typeOf<VObject>(), note, lowest, highest);
    return names;
  }
  void TearDown() override { VManagedObject::clear(); }
};

TEST_F(VManagedObjectTest, ATakenNameGivesTheNextFreeOne) {
  EXPECT_EQ(addLink("x")->name(), "x");
  EXPECT_EQ(addLink("x_2")->name(), "x_2");
  EXPECT_EQ(addLink("x")->name(), "x_3");
  EXPECT_EQ(addLink("x_2")->name(), "x_2_2");
  for (const char* name : {"x_2", "x_3", "x"}) {
    VManagedObject::find<VObject>(name)->remove();
    EXPECT_EQ(addLink("x")->name(), name);
  }
}

TEST_F(VManagedObjectTest, WalksGoByRankAndThenInTheOrderOfCreation) {
  for (const auto& [name, rank] : {std::pair{"late", 5}, {"b", 0}, {"a", 0}, {"early", -5}})
    addLink(name, rank);
  EXPECT_THAT(walk(), ElementsAre("early", "b", "a", "late"));
  EXPECT_THAT(walk(0, 4), ElementsAre("b", "a"));
}

TEST_F(VManagedObjectTest, AWalkBearsThatTheSceneChangesUnderIt) {
  for (const char* name : {"a", "b", "c"}) addLink(name);
  std::vector<std::string> seen;
  const auto change = [&](int /*rank*/, const Rethold::StrongPtr<VManagedObject>& object,
                          const std::string& name) {
    seen.push_back(name);
    if (name == "a") VManagedObject::find<VObject>("b")->remove();
    if (name == "c") addLink("d");
    object->remove();
    return true;
  };
  VManagedObject::iterate(Rethold::typeOf<VObject>(), change);
  EXPECT_THAT(seen, ElementsAre("a", "c", "d"));
  EXPECT_TRUE(walk().empty());
}

TEST_F(VManagedObjectTest, AnObjectAndACreatorMayShareAName) {
  const auto creator = registerCreator<Link>("Test", "Shared", {});
  EXPECT_EQ(addLink("Test/Shared")->name(), "Test/Shared");
  EXPECT_EQ(VManagedObject::find<VCreatorBase>("Test/Shared"), creator);
  creator->remove();
  EXPECT_EQ(VManagedObject::find<VCreatorBase>("Test/Shared"), nullptr);
  EXPECT_NE(VManagedObject::find<VObject>("Test/Shared"), nullptr);
}

constexpr int ChainLength = 200000;

TEST_F(VManagedObjectTest, ALongChainOfOneNameIsBuiltRunAndClearedInAMoment) {
  auto previous = addLink("link");
  const auto first = previous;
  std::string reason;
  for (int i = 1; i < ChainLength; ++i) {
    auto next = addLink("link");
    ASSERT_TRUE(next->attach("value", *previous, "", reason)) << reason;
    previous = next;
  }
  first->in.set(0.5);
  EXPECT_EQ(VScheduler::execute(1.0), ChainLength) << "a change runs down the chain in one round";
  EXPECT_EQ(previous->out.get(), ChainLength + 0.5);
  first->remove();
  EXPECT_EQ(VScheduler::execute(1.0), ChainLength - 1);
  EXPECT_EQ(previous->out.get(), ChainLength - 1);
  VManagedObject::clear();
  EXPECT_FALSE(previous->inGraph());
  EXPECT_EQ(VScheduler::execute(1.0), 0);
  EXPECT_EQ(addLink("link")->name(), "link");
}

} // namespace
} // namespace Zamt::Testing
