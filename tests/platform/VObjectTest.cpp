#include "sorbine/VObject.h"

#include "cadmer/VAction.h"
#include "sorbine/VCreator.h"
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

class VObjectTest : public ::testing::Test {
protected:
  static Rethold::StrongPtr<Adder> add(const std::string& name) {
    auto object = std::make_shared<Adder>();
    VManagedObject::add(object, name);
    object->initialize();
    return object;
  }
  static int settle() { return VScheduler::execute(1.0); }
  static std::string refusal(const std::string& slot, const std::string& source, const std::string& output) {
    const auto result = TolvenActions::Attachment("a", slot, source, output);
    EXPECT_FALSE(result.success);
    return result.reason;
  }
  void TearDown() override { VManagedObject::clear(); }
};

TEST_F(VObjectTest, AttachmentPicksTheNamesakeOrElseTheFirstAndDetachingGivesTheOwnValueBack) {
  const auto a = add("a");
  const auto b = add("b");
  b->left.set(5.0);
  settle();
  EXPECT_TRUE(TolvenActions::Attachment("b", "sum", "a", "").success);
  EXPECT_EQ(b->sum.get(), 3.0);
  EXPECT_TRUE(TolvenActions::Attachment("b", "left", "a", "").success);
  EXPECT_EQ(b->left.get(), -1.0);
  EXPECT_TRUE(TolvenActions::Attachment("b", "left", "a", "sum").success);
  EXPECT_EQ(b->left.get(), 3.0);
  EXPECT_EQ(b->left.source(), a);
  EXPECT_FALSE(b->getSlot("left")->parameter()->setValueFromText("7", nullptr, {}));
  EXPECT_EQ(a->difference.get(), -1.0);
  EXPECT_TRUE(TolvenActions::Attachment("b", "left", "", "").success);
  EXPECT_EQ(b->left.get(), 5.0);
  EXPECT_EQ(b->left.source(), nullptr);
}

TEST_F(VObjectTest, AttachmentSaysWhyNot) {
  add("a");
  add("b");
  EXPECT_EQ(refusal("left", "nobody", ""), "There is no object called \"nobody\".");
  EXPECT_EQ(refusal("nothing", "b", ""), "\"a\" has no input called \"nothing\".");
  EXPECT_EQ(refusal("left", "b", "nothing"), "\"b\" has no output called \"nothing\".");
  EXPECT_EQ(refusal("left", "b", "text"),
            "\"b.text\" does not publish what \"a.left\" reads, which is double.");
  EXPECT_EQ(refusal("vanish", "b", ""),
            "\"b\" publishes nothing that \"a.vanish\" reads, which is std::shared_ptr<Zamt::VAction>.");
  EXPECT_EQ(TolvenActions::Attachment("nobody", "left", "b", "").reason,
            "There is no object called \"nobody\".");
}

TEST_F(VObjectTest, OnlyWhatReadsAChangeComputesAgain) {
  const auto a = add("a");
  const auto b = add("b");
  const auto c = add("c");
  TolvenActions::Attachment("b", "sum", "a", "");
  TolvenActions::Attachment("c", "note", "a", "");
  EXPECT_EQ(settle(), 3);
  a->left.set(4.0);
  EXPECT_EQ(settle(), 2) << "a and b; the text that c reads is the same as before";
  EXPECT_EQ(b->total.get(), 7.0);
  EXPECT_THAT(b->changedInputs, ElementsAre("sum"));
  EXPECT_EQ(c->computed, 1);
  EXPECT_EQ(settle(), 0);
  EXPECT_TRUE(TolvenActions::Attachment("c", "left", "c", "sum").success);
  for (int round = 0; round < 3; ++round) EXPECT_EQ(settle(), 1) << "what feeds itself runs once a round";
}

TEST_F(VObjectTest, RemovingAnObjectDetachesItsReaders) {
  const auto a = add("a");
  const auto b = add("b");
  TolvenActions::Attachment("b", "left", "a", "");
  TolvenActions::Attachment("a", "left", "b", "");
  settle();
  a->remove();
  EXPECT_EQ(b->left.source(), nullptr);
  EXPECT_EQ(b->left.get(), 1.0);
  int readers = 0;
  b->difference.slot()->parameter()->iterateUsers([&](const auto& /*reader*/, const auto& /*slot*/) {
    ++readers;
    return true;
  });
  EXPECT_EQ(readers, 0);
  EXPECT_EQ(settle(), 1) << "b computes again; a is gone";
}

TEST_F(VObjectTest, AnActionMayRemoveItsOwnObjectAndDoesNothingWhenThatIsGone) {
  const auto slot = add("a")->vanish;
  const auto held = valueAs<Rethold::StrongPtr<VAction>>(slot->value())->held;
  for (int round = 0; round < 2; ++round) {
    held->emitAction(nullptr, slot->parameter());
    EXPECT_EQ(VManagedObject::find<VObject>("a"), nullptr);
    EXPECT_EQ(slot->parameter()->source(), nullptr);
  }
}

} // namespace
} // namespace Zamt::Testing
