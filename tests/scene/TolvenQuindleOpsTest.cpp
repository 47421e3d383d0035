#include "quindle/scene/TolvenQuindleOps.h"

#include "cadmer/VAction.h"
#include "sorbine/VCreator.h"
#include "sorbine/VScheduler.h"

#include <gmock/gmock.h>

namespace Zamt::Testing {

/// A value with a button and a number in it.
struct Panel {
  Rethold::StrongPtr<VValueBase> button;
  Rethold::StrongPtr<VValueBase> number = std::make_shared<VValue<double>>(1.0);
};
class LongBrushStroke {};

} // namespace Zamt::Testing

namespace Zamt {

template <>
struct VValueTrait<Testing::Panel> {
  static bool setValueFromText(Testing::Panel& /*value*/, const std::string& /*text*/) { return false; }
  static std::string Text(const Testing::Panel& /*value*/) { return "a panel"; }
  static Rethold::StrongPtr<VValueBase> component(const Testing::Panel& value, const std::string& name) {
    return name == "button" ? value.button : name == "number" ? value.number : nullptr;
  }
};

} // namespace Zamt

namespace Zamt::Testing {
namespace {

using Rethold::StrongPtr;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What the tests watch from outside the objects.
int& fired() {
  static int count = 0;
  return count;
}

StrongPtr<VAction> counting() {
  return std::make_shared<VAction>([](const auto& /*pool*/, const auto& /*parameter*/) { ++fired(); });
}

class Source : public VObject {
  VInput<double> size_ = input<double>("size", "A number.", 1.5);
  VOutput<double> length_ = output<double>("length", "The number again.");
  VOutput<double> width_ = output<double>("width", "The number once more.");
  VOutput<std::string> status_ = output<std::string>("status", "How it is.", "resting");
  VOutput<StrongPtr<LongBrushStroke>> stroke_ = output<StrongPtr<LongBrushStroke>>("stroke", "A stroke.");
  StrongPtr<VSlot> press_ = action("press", "Counts.", [] { ++fired(); });

  void compute() override {
    length_.publish(size_.get());
    width_.publish(size_.get());
  }
};

class Reader : public VObject {
  VInput<double> height_ = input<double>("height", "A number.");
  VInput<double> depth_ = input<double>("depth", "Another number.");
  VInput<std::string> words_ = input<std::string>("words", "A text.");
};

/// Refuses every source, without a reason.
class Refuser : public Reader {
  bool accepts(const VSlot& /*input*/, const VSlot& /*output*/, std::string& /*reason*/) const override {
    return false;
  }
};

/// Publishes a parameter that it was given by an object which is gone since.
class Heir : public VObject {
public:
  Heir() {
    const auto dead = std::make_shared<Source>();
    VManagedObject::add(dead, "dead");
    struct Take : VOutputIterator {
      bool apply(Rethold::TypeId /*type*/, const StrongPtr<VSlot>& slot) override {
        parameter = slot->parameter();
        return false;
      }
      StrongPtr<VParameter> parameter;
    } take;
    dead->iterate_outputs(take);
    dead->remove();
    addOutput(std::make_shared<VSlot>("legacy", "What is left.", take.parameter));
  }
};

/// Slots of every odd shape.
class Oddity : public VObject {
public:
  Oddity() {
    const auto panel = std::make_shared<VValue<Panel>>();
    panel->held.button = std::make_shared<VValue<StrongPtr<VAction>>>(counting());
    const auto parameter = std::make_shared<VParameter>(panel);
    addInput(std::make_shared<VSlot>("button", "", parameter, "button"));
    addInput(std::make_shared<VSlot>("number", "", parameter, "number"));
    addInput(std::make_shared<VSlot>("nothing", "", parameter, "nothing"));
    addInput(std::make_shared<VSlot>("bare", "", nullptr));
    addInput(std::make_shared<VSlot>("hollow", "", std::make_shared<VParameter>(nullptr)));
    const auto none = std::make_shared<VValue<StrongPtr<VAction>>>();
    addInput(std::make_shared<VSlot>("blank", "", std::make_shared<VParameter>(none)));
  }
};

/// Keeps the schedule busy for 150 rounds.
class Busy : public VObject {
  int left_ = 150;
  void compute() override {
    if (--left_ > 0) schedule();
  }
};

class TolvenQuindleOpsTest : public ::testing::Test {
protected:
  TolvenQuindleOpsTest() {
    const auto number = VAcceptInfo::of<double>("height", "number");
    const auto deep = VAcceptInfo::of<double>("depth", "deep");
    add(registerCreator<Source>("Test", "Source", {}));
    add(registerCreator<Reader>("Test", "Reader", {0, "", "", {number, deep}}));
    add(registerCreator<Refuser>("Test", "Refuser", {0, "", "", {number}}));
    add(registerCreator<Oddity>("Test", "Oddity", {}));
    add(registerCreator<Heir>("Test", "Heir", {}));
    add(registerCreator<Busy>("Test", "Busy", {}));
    add(registerCreator("Test", "Never", {0, "", "", {number}}, [] { return nullptr; }));
    fired() = 0;
  }
  ~TolvenQuindleOpsTest() override {
    VManagedObject::clear();
    for (const auto& creator : creators_) creator->remove();
  }

  void add(const StrongPtr<VCreatorBase>& creator) { creators_.push_back(creator); }
  std::string make(const std::string& identifier, const std::string& name) {
    return ops.create("Test/" + identifier, name, diag);
  }
  std::string read(const std::string& object, const std::string& slot) {
    std::string value = "untouched";
    EXPECT_TRUE(ops.getParam(object, slot, value, diag));
    return value;
  }
  /// The one error that was reported since the last call, with its place in front.
  std::string error() {
    EXPECT_EQ(diag.errorCount, 1U);
    std::string text = diag.format();
    diag.clear();
    return text;
  }

  TolvenQuindleOps ops{std::make_shared<ValuePool>()};
  Diag diag;

private:
  std::vector<StrongPtr<VCreatorBase>> creators_;
};

TEST_F(TolvenQuindleOpsTest, CreateGivesTheNameThatTheObjectReallyGot) {
  EXPECT_EQ(make("Source", "s"), "s");
  EXPECT_EQ(make("Source", "s"), "s_2");
  EXPECT_EQ(ops.creatorOf("s_2"), "Test/Source");
  EXPECT_TRUE(ops.exists("s_2"));
  EXPECT_TRUE(diag.entries.empty());
}

TEST_F(TolvenQuindleOpsTest, CreateSaysWhatIsMissingOrRefused) {
  EXPECT_EQ(make("Source2", "s"), "");
  EXPECT_EQ(error(),
            "Test/Source2: error: There is no creator called \"Test/Source2\". Either the name is wrong or "
            "the plugin providing it was not built.");
  EXPECT_EQ(make("Never", "n"), "");
  EXPECT_EQ(error(), "Test/Never: error: \"Test/Never\" refused to create an object.");
}

TEST_F(TolvenQuindleOpsTest, EveryOperationOnAnUnknownObjectSaysSo) {
  const std::string expected = "ghost: error: There is no object called \"ghost\".";
  std::string value = "as it was";
  EXPECT_FALSE(ops.setParam("ghost", "size", "1", diag));
  EXPECT_EQ(error(), expected);
  EXPECT_FALSE(ops.getParam("ghost", "size", value, diag));
  EXPECT_EQ(error(), expected);
  EXPECT_EQ(value, "as it was");
  EXPECT_FALSE(ops.fireAction("ghost", "press", diag));
  EXPECT_EQ(error(), expected);
  EXPECT_EQ(ops.createConsumer("ghost", "Test/Reader", "", diag), "");
  EXPECT_EQ(error(), expected);
  EXPECT_FALSE(ops.removeObject("ghost", diag));
  EXPECT_EQ(error(), expected);
  EXPECT_EQ(ops.resolve("ghost", diag), nullptr);
  EXPECT_EQ(error(), expected);
}

TEST_F(TolvenQuindleOpsTest, QuestionsAboutAnUnknownObjectAreSilent) {
  EXPECT_FALSE(ops.exists("ghost"));
  EXPECT_EQ(ops.sourceOf("ghost", "height"), "");
  EXPECT_THAT(ops.consumersOf("ghost"), IsEmpty());
  EXPECT_EQ(ops.creatorOf("ghost"), "");
  EXPECT_EQ(ops.statusOf("ghost"), "");
}

TEST_F(TolvenQuindleOpsTest, ConnectReportsFailuresWithTheReasonIfThereIsOne) {
  make("Source", "s");
  make("Reader", "r");
  make("Refuser", "closed");
  EXPECT_FALSE(ops.connect("closed", "height", "s", "length", diag));
  EXPECT_EQ(error(), "closed: error: Could not attach closed.height to s.length.");
  EXPECT_FALSE(ops.connect("closed", "height", "s", "", diag));
  EXPECT_EQ(error(), "closed: error: Could not attach closed.height to s.");
  EXPECT_FALSE(ops.connect("r", "height", "ghost", "", diag));
  EXPECT_EQ(error(), "r: error: Could not attach r.height to ghost: There is no object called \"ghost\".");
  EXPECT_FALSE(ops.connect("r", "height", "s", "status", diag));
  EXPECT_EQ(error(), "r: error: Could not attach r.height to s.status: \"s.status\" does not publish what "
                     "\"r.height\" reads, which is double.");
  EXPECT_FALSE(ops.connect("ghost", "height", "s", "", diag));
  EXPECT_EQ(error(),
            "ghost: error: Could not attach ghost.height to s: There is no object called \"ghost\".");
}

TEST_F(TolvenQuindleOpsTest, AnAttachmentWithoutALiveSourceDidNotHold) {
  make("Heir", "h");
  make("Reader", "r");
  EXPECT_FALSE(ops.connect("r", "height", "h", "", diag));
  EXPECT_EQ(error(), "r: error: The attachment of r.height to h reported success but did not hold.");
}

TEST_F(TolvenQuindleOpsTest, ConnectingToNothingDetaches) {
  make("Source", "s");
  make("Reader", "r");
  ASSERT_TRUE(ops.connect("r", "height", "s", "width", diag));
  EXPECT_EQ(ops.sourceOf("r", "height"), "s");
  EXPECT_TRUE(ops.connect("r", "height", "", "", diag));
  EXPECT_EQ(ops.sourceOf("r", "height"), "");
  EXPECT_TRUE(diag.entries.empty());
}

TEST_F(TolvenQuindleOpsTest, ParametersAreWrittenOnInputsAndReadOnBothKinds) {
  make("Source", "s");
  EXPECT_TRUE(ops.setParam("s", "size", "2.5", diag));
  EXPECT_EQ(ops.settle(), 1);
  EXPECT_EQ(read("s", "size"), "2.5");
  EXPECT_EQ(read("s", "length"), "2.5");
  EXPECT_EQ(ops.statusOf("s"), "resting");
  EXPECT_FALSE(ops.setParam("s", "length", "1", diag));
  EXPECT_EQ(error(), "s: error: \"s\" has no slot called \"length\".");
  std::string value;
  EXPECT_FALSE(ops.getParam("s", "colour", value, diag));
  EXPECT_EQ(error(), "s: error: \"s\" has no slot called \"colour\".");
}

TEST_F(TolvenQuindleOpsTest, AValueThatTheSlotCannotTakeIsRefusedAndChangesNothing) {
  make("Source", "s");
  EXPECT_FALSE(ops.setParam("s", "size", "big", diag));
  EXPECT_EQ(error(), "s: error: \"big\" is not a value s.size can take.");
  EXPECT_EQ(read("s", "size"), "1.5");
  make("Oddity", "o");
  EXPECT_FALSE(ops.setParam("o", "bare", "1", diag));
  EXPECT_EQ(error(), "o: error: \"1\" is not a value o.bare can take.");
  EXPECT_EQ(read("o", "bare"), "");
}

TEST_F(TolvenQuindleOpsTest, FiringAnActionCarriesItOutAndTouchesItsSlot) {
  make("Source", "s");
  ops.settle();
  const auto slot = VManagedObject::find<VObject>("s")->getSlot("press");
  EXPECT_FALSE(slot->changed());
  EXPECT_TRUE(ops.fireAction("s", "press", diag));
  EXPECT_EQ(fired(), 1);
  EXPECT_TRUE(slot->changed());
  make("Oddity", "o");
  EXPECT_TRUE(ops.fireAction("o", "button", diag)) << "the button is a member of the slot's value";
  EXPECT_EQ(fired(), 2);
}

TEST_F(TolvenQuindleOpsTest, WhatIsNoActionCannotBeFired) {
  make("Oddity", "o");
  for (const std::string slot : {"number", "nothing", "bare", "hollow"}) {
    EXPECT_FALSE(ops.fireAction("o", slot, diag));
    EXPECT_EQ(error(), "o: error: \"o." + slot + "\" is not an action.");
  }
  EXPECT_FALSE(ops.fireAction("o", "blank", diag));
  EXPECT_EQ(error(), "o: error: \"o.blank\" holds no action to fire.");
  EXPECT_FALSE(ops.fireAction("o", "missing", diag));
  EXPECT_EQ(error(), "o: error: \"o\" has no slot called \"missing\".");
}

TEST_F(TolvenQuindleOpsTest, ObjectsPublishingLooksForTheWordInTheTypesOfTheOutputs) {
  make("Reader", "r");
  make("Source", "b");
  make("Source", "a");
  VManagedObject::add(std::make_shared<Source>(), "orphan");
  EXPECT_THAT(ops.objectsPublishing("Brush"), ElementsAre("b", "a"));
  EXPECT_THAT(ops.objectsPublishing(""), ElementsAre("b", "a"));
  EXPECT_THAT(ops.objectsPublishing("Grid"), IsEmpty());
}

TEST_F(TolvenQuindleOpsTest, ConsumersAreNamedOnceAndNeverTheObjectItself) {
  make("Source", "s");
  make("Reader", "r1");
  make("Reader", "r2");
  ASSERT_TRUE(ops.connect("r2", "height", "s", "length", diag));
  ASSERT_TRUE(ops.connect("r1", "height", "s", "length", diag));
  ASSERT_TRUE(ops.connect("r1", "depth", "s", "width", diag));
  ASSERT_TRUE(ops.connect("s", "size", "s", "length", diag));
  EXPECT_THAT(ops.consumersOf("s"), ElementsAre("r2", "r1"));
  EXPECT_EQ(ops.sourceOf("s", "size"), "") << "its own object is no source";
}

TEST_F(TolvenQuindleOpsTest, CreateConsumerTakesTheFirstWayOfReadingThatMatches) {
  make("Source", "s");
  EXPECT_EQ(ops.createConsumer("s", "Test/Reader", "", diag), "Reader");
  EXPECT_EQ(ops.sourceOf("Reader", "height"), "s");
  EXPECT_EQ(ops.createConsumer("s", "Reader", "deep", diag), "Reader_2");
  EXPECT_EQ(ops.sourceOf("Reader_2", "depth"), "s");
  EXPECT_EQ(ops.settle(), 3) << "the source and its two new readers";
}

TEST_F(TolvenQuindleOpsTest, CreateConsumerSaysWhyNot) {
  make("Source", "s");
  make("Reader", "r");
  EXPECT_EQ(ops.createConsumer("r", "Reader", "", diag), "");
  EXPECT_EQ(error(), "r: error: Nothing can read what \"r\" publishes.");
  for (const std::string creator : {"Test/Oddity", "Nobody"}) {
    EXPECT_EQ(ops.createConsumer("s", creator, "", diag), "");
    EXPECT_EQ(error(), "s: error: \"" + creator + "\" cannot read what \"s\" publishes.");
  }
  EXPECT_EQ(ops.createConsumer("s", "Reader", "sideways", diag), "");
  EXPECT_EQ(error(), "s: error: \"Reader\" cannot read what \"s\" publishes.");
  for (const std::string creator : {"Never", "Refuser"}) {
    EXPECT_EQ(ops.createConsumer("s", creator, "", diag), "");
    EXPECT_EQ(error(), "s: error: \"" + creator + "\" could not be attached to \"s\".");
    EXPECT_FALSE(ops.exists(creator));
  }
}

TEST_F(TolvenQuindleOpsTest, ARemovedObjectIsGoneAndFeedsNobody) {
  make("Source", "s");
  make("Reader", "r");
  ASSERT_TRUE(ops.connect("r", "height", "s", "", diag));
  EXPECT_TRUE(ops.removeObject("s", diag));
  EXPECT_FALSE(ops.exists("s"));
  EXPECT_EQ(ops.sourceOf("r", "height"), "");
  EXPECT_TRUE(diag.entries.empty());
}

TEST_F(TolvenQuindleOpsTest, AnObjectThatNoCreatorMadeHasNone) {
  VManagedObject::add(std::make_shared<Source>(), "orphan");
  EXPECT_EQ(ops.creatorOf("orphan"), "");
}

TEST_F(TolvenQuindleOpsTest, SettleStopsAfterAHundredRoundsAndGoesOnWithTheNextCall) {
  make("Busy", "b");
  EXPECT_EQ(ops.settle(), 100);
  EXPECT_EQ(ops.settle(), 50);
  EXPECT_EQ(ops.settle(), 0);
}

TEST_F(TolvenQuindleOpsTest, LoadingTheLibraryMadeItsTwoValueTypesKnown) {
  const auto numbers = VManagedObject::find<VValueCreator>("Zamt::VValue<double>");
  ASSERT_NE(numbers, nullptr);
  EXPECT_EQ(numbers->createValue()->type(), Rethold::typeOf<double>());
  const auto actions =
      VManagedObject::find<VValueCreator>(Rethold::Typename(Rethold::typeOf<VValue<StrongPtr<VAction>>>()));
  ASSERT_NE(actions, nullptr);
  EXPECT_EQ(actions->createValue()->type(), Rethold::typeOf<StrongPtr<VAction>>());
}

} // namespace
} // namespace Zamt::Testing
