#include "cadmer/VAction.h"
#include "sorbine/VCreator.h"
#include "sorbine/VObject.h"
#include "sorbine/VScheduler.h"
#include "tolven/TolvenActions.h"

#include <gmock/gmock.h>

namespace Zamt::Testing {
namespace {

using ::testing::ElementsAre;

/// Two outputs of one type and one of another; counts how often it computed.
class Adder : public VObject {
public:
  VInput<double> left = input<double>("left", "One number.", 1.0);
  VInput<double> sum = input<double>("sum", "Another number.", 2.0);
  VInput<std::string> note = input<std::string>("note", "Any text.", "none");
  VOutput<std::string> text = output<std::string>("text", "The note again.");
  VOutput<double> difference = output<double>("difference", "The difference.");
  VOutput<double> total = output<double>("sum", "The sum.");
  Rethold::StrongPtr<VSlot> vanish = action("vanish", "Takes the object away.", [this] {
    remove();
    left.set(9.0);
  });
  int computed = 0;
  std::vector<std::string> changedInputs;

private:
  void compute() override {
    ++computed;
    changedInputs.clear();
    iterate_inputs([this](const auto& slot, int /*index*/) {
      if (slot->changed()) changedInputs.push_back(slot->name());
      return true;
    });
    text.publish(note.get());
    difference.publish(left.get() - sum.get());
    total.publish(left.get() + sum.get());
  }
};

class Graph : public ::testing::Test {
protected:
  static Rethold::StrongPtr<Adder> add(const std::string& name, int rank = 0) {
    auto object = std::make_shared<Adder>();
    VManagedObject::add(object, name, rank);
    object->initialize();
    return object;
  }
  static int settle() { return VScheduler::execute(1.0); }
  static std::string attach(const std::string& object, const std::string& slot, const std::string& source,
                            const std::string& output = {}) {
    const auto result = TolvenActions::Attachment(object, slot, source, output);
    EXPECT_EQ(result.success, result.reason.empty());
    return result.reason;
  }
  void TearDown() override { VManagedObject::clear(); }
};

TEST_F(Graph, ATakenNameGivesTheNextFreeOneAndACreatorMayShareOne) {
  EXPECT_EQ(add("x")->name(), "x");
  EXPECT_EQ(add("x_2")->name(), "x_2");
  EXPECT_EQ(add("x")->name(), "x_3");
  EXPECT_EQ(add("x_2")->name(), "x_2_2");
  for (const char* name : {"x_2", "x_3", "x"}) {
    VManagedObject::find<VObject>(name)->remove();
    EXPECT_EQ(add("x")->name(), name);
  }
  const auto creator = registerCreator<Adder>("Test", "Shared", {});
  EXPECT_EQ(add("Test/Shared")->name(), "Test/Shared");
  EXPECT_EQ(VManagedObject::find<VCreatorBase>("Test/Shared"), creator);
  creator->remove();
  EXPECT_EQ(VManagedObject::find<VCreatorBase>("Test/Shared"), nullptr);
  EXPECT_NE(VManagedObject::find<VObject>("Test/Shared"), nullptr);
}

TEST_F(Graph, WalksGoByRankAndThenInTheOrderOfCreationAndBearThatTheSceneChangesUnderThem) {
  for (const auto& [name, rank] : {std::pair{"late", 5}, {"b", 0}, {"gone", 0}, {"a", 0}, {"early", -5}})
    add(name, rank);
  std::vector<std::string> seen;
  const auto change = [&](int rank, const Rethold::StrongPtr<VManagedObject>& object,
                          const std::string& name) {
    seen.push_back(name + std::to_string(rank));
    if (name == "b") VManagedObject::find<VObject>("gone")->remove();
    if (name == "a") add("new", 4);
    object->remove();
    return true;
  };
  VManagedObject::iterate(Rethold::typeOf<VObject>(), change, 0, 4);
  EXPECT_THAT(seen, ElementsAre("b0", "a0", "new4"));
  VManagedObject::iterate(Rethold::typeOf<VObject>(), change);
  EXPECT_THAT(seen, ElementsAre("b0", "a0", "new4", "early-5", "late5"));
}

TEST_F(Graph, ALongChainOfOneNameIsBuiltRunAndClearedInAMoment) {
  constexpr int length = 100000;
  auto previous = add("link");
  const auto first = previous;
  std::string reason;
  for (int i = 1; i < length; ++i) {
    auto next = add("link");
    ASSERT_TRUE(next->attach("left", *previous, "sum", reason)) << reason;
    previous = next;
  }
  first->left.set(0.5);
  EXPECT_EQ(settle(), length) << "a change runs down the chain in one round";
  EXPECT_EQ(previous->total.get(), 2.0 * length + 0.5);
  first->remove();
  EXPECT_EQ(settle(), length - 1);
  VManagedObject::clear();
  EXPECT_FALSE(previous->inGraph());
  EXPECT_EQ(settle(), 0);
  EXPECT_EQ(add("link")->name(), "link");
}

TEST_F(Graph, AttachmentPicksTheNamesakeOrElseTheFirstAndSaysWhyNot) {
  const auto a = add("a");
  const auto b = add("b");
  b->left.set(5.0);
  settle();
  EXPECT_EQ(attach("b", "sum", "a"), "");
  EXPECT_EQ(b->sum.get(), 3.0);
  EXPECT_EQ(attach("b", "left", "a"), "");
  EXPECT_EQ(b->left.get(), -1.0);
  EXPECT_EQ(attach("b", "left", "a", "sum"), "");
  EXPECT_EQ(b->left.source(), a);
  settle();
  EXPECT_THAT(b->changedInputs, ElementsAre("left", "sum"));
  EXPECT_FALSE(b->getSlot("left")->parameter()->setValueFromText("7", nullptr, {}));
  EXPECT_EQ(attach("a", "left", "nobody"), "There is no object called \"nobody\".");
  EXPECT_EQ(attach("a", "nothing", "b"), "\"a\" has no input called \"nothing\".");
  EXPECT_EQ(attach("a", "left", "b", "nothing"), "\"b\" has no output called \"nothing\".");
  EXPECT_EQ(attach("a", "left", "b", "text"),
            "\"b.text\" does not publish what \"a.left\" reads, which is double.");
  EXPECT_EQ(attach("a", "vanish", "b"),
            "\"b\" publishes nothing that \"a.vanish\" reads, which is std::shared_ptr<Zamt::VAction>.");
}

TEST_F(Graph, OnlyWhatReadsAChangeComputesAgain) {
  const auto a = add("a");
  const auto b = add("b");
  const auto c = add("c");
  attach("b", "sum", "a");
  attach("c", "note", "a");
  EXPECT_EQ(settle(), 3);
  a->left.set(4.0);
  EXPECT_EQ(settle(), 2) << "a and b; the text that c reads is the same as before";
  EXPECT_EQ(b->total.get(), 7.0);
  EXPECT_THAT(b->changedInputs, ElementsAre("sum"));
  EXPECT_EQ(c->computed, 1);
  EXPECT_EQ(settle(), 0);
  EXPECT_EQ(attach("c", "left", "c", "sum"), "");
  for (int round = 0; round < 3; ++round) EXPECT_EQ(settle(), 1) << "what feeds itself runs once a round";
}

TEST_F(Graph, ARemovedObjectGivesItsReadersTheirOwnValuesBackAndItsActionsDoNothing) {
  const auto a = add("a");
  const auto b = add("b");
  attach("b", "left", "a");
  attach("a", "left", "b");
  settle();
  const auto action = valueAs<Rethold::StrongPtr<VAction>>(a->vanish->value())->held;
  for (int round = 0; round < 2; ++round) {
    action->emitAction(nullptr, a->vanish->parameter());
    EXPECT_EQ(VManagedObject::find<VObject>("a"), nullptr);
  }
  EXPECT_EQ(b->left.source(), nullptr);
  EXPECT_EQ(b->left.get(), 1.0);
  EXPECT_EQ(settle(), 1) << "b computes again; a is gone";
}

} // namespace
} // namespace Zamt::Testing
