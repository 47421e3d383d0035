#include "quindle/scene/TolvenQuindleOps.h"

#include "sorbine/VCreator.h"
#include "sorbine/VScheduler.h"
#include "tests/support/Panel.h"

#include <gmock/gmock.h>

namespace Zamt::Testing {

class LongBrushStroke {};

namespace {

using Rethold::StrongPtr;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What the tests watch from outside the objects.
int& fired() {
  static int count = 0;
  return count;
}

/// An input and an output of one name.
class Twin : public VObject {
  VInput<double> in_ = input<double>("twin", "A number.", 1);
  VOutput<double> out_ = output<double>("twin", "Another number.", 2);
};

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
    const auto parameter = std::make_shared<VParameter>(panel);
    const auto count = [own = parameter.get()](const auto& /*pool*/, const StrongPtr<VParameter>& pressed) {
      if (pressed.get() == own) ++fired();
    };
    panel->held.button = std::make_shared<VValue<StrongPtr<VAction>>>(std::make_shared<VAction>(count));
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
    add(registerCreator<Twin>("Test", "Twin", {}));
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
  /// An operation has failed with this one message.
  template <class Outcome>
  void expectError(const Outcome& outcome, const std::string& message) {
    EXPECT_EQ(outcome, Outcome());
    EXPECT_EQ(diag.format(), message);
    diag.clear();
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
  EXPECT_EQ(diag.format(), "");
  expectError(make("Source2", "s"), "Test/Source2: error: There is no creator called \"Test/Source2\". "
                                    "Either the name is wrong or the plugin providing it was not built.");
  expectError(make("Never", "n"), "Test/Never: error: \"Test/Never\" refused to create an object.");
}

TEST_F(TolvenQuindleOpsTest, AnUnknownObjectIsAnErrorToWorkOnAndNothingToAskAbout) {
  const std::string unknown = "ghost: error: There is no object called \"ghost\".";
  std::string value = "as it was";
  expectError(ops.setParam("ghost", "size", "1", diag), unknown);
  expectError(ops.getParam("ghost", "size", value, diag), unknown);
  expectError(ops.fireAction("ghost", "press", diag), unknown);
  expectError(ops.createConsumer("ghost", "Test/Reader", "", diag), unknown);
  expectError(ops.removeObject("ghost", diag), unknown);
  expectError(ops.resolve("ghost", diag), unknown);
  EXPECT_EQ(value, "as it was");
  EXPECT_FALSE(ops.exists("ghost"));
  EXPECT_EQ(ops.sourceOf("ghost", "height") + ops.creatorOf("ghost") + ops.statusOf("ghost"), "");
  EXPECT_THAT(ops.consumersOf("ghost"), IsEmpty());
}

TEST_F(TolvenQuindleOpsTest, ConnectReportsFailuresWithTheReasonIfThereIsOne) {
  make("Source", "s");
  make("Reader", "r");
  make("Refuser", "closed");
  make("Heir", "h");
  expectError(ops.connect("closed", "height", "s", "length", diag),
              "closed: error: Could not attach closed.height to s.length.");
  expectError(ops.connect("r", "height", "ghost", "", diag),
              "r: error: Could not attach r.height to ghost: There is no object called \"ghost\".");
  expectError(ops.connect("ghost", "height", "s", "", diag),
              "ghost: error: Could not attach ghost.height to s: There is no object called \"ghost\".");
  expectError(ops.connect("r", "height", "h", "", diag),
              "r: error: The attachment of r.height to h reported success but did not hold.");
}

TEST_F(TolvenQuindleOpsTest, ConnectingToNothingAndRemovingTheSourceDetach) {
  make("Source", "s");
  make("Reader", "r");
  ASSERT_TRUE(ops.connect("r", "height", "s", "width", diag));
  EXPECT_EQ(ops.sourceOf("r", "height"), "s");
  EXPECT_TRUE(ops.connect("r", "height", "", "", diag));
  EXPECT_EQ(ops.sourceOf("r", "height"), "");
  ASSERT_TRUE(ops.connect("r", "height", "s", "", diag));
  EXPECT_TRUE(ops.removeObject("s", diag));
  EXPECT_FALSE(ops.exists("s"));
  EXPECT_EQ(ops.sourceOf("r", "height"), "");
  EXPECT_EQ(diag.format(), "");
}

TEST_F(TolvenQuindleOpsTest, ParametersAreWrittenOnInputsAndReadOnBothKinds) {
  make("Source", "s");
  EXPECT_TRUE(ops.setParam("s", "size", "2.5", diag));
  EXPECT_EQ(ops.settle(), 1);
  EXPECT_EQ(read("s", "size"), "2.5");
  EXPECT_EQ(read("s", "length"), "2.5");
  EXPECT_EQ(ops.statusOf("s"), "resting");
  std::string value;
  expectError(ops.setParam("s", "length", "1", diag), "s: error: \"s\" has no slot called \"length\".");
  expectError(ops.getParam("s", "colour", value, diag), "s: error: \"s\" has no slot called \"colour\".");
  expectError(ops.setParam("s", "size", "big", diag), "s: error: \"big\" is not a value s.size can take.");
  EXPECT_EQ(read("s", "size"), "2.5");
  make("Oddity", "o");
  expectError(ops.setParam("o", "bare", "1", diag), "o: error: \"1\" is not a value o.bare can take.");
  EXPECT_EQ(read("o", "bare"), "");
  make("Twin", "t");
  EXPECT_EQ(read("t", "twin"), "1") << "the input wins the name";
  // A slot that is about a member is written and read as a whole.
  expectError(ops.setParam("o", "number", "1", diag), "o: error: \"1\" is not a value o.number can take.");
  EXPECT_EQ(read("o", "number"), "a panel");
}

TEST_F(TolvenQuindleOpsTest, FiringAnActionCarriesItOutAndTouchesItsSlot) {
  make("Source", "s");
  make("Oddity", "o");
  ops.settle();
  const auto slot = VManagedObject::find<VObject>("s")->getSlot("press");
  EXPECT_FALSE(slot->changed());
  EXPECT_TRUE(ops.fireAction("s", "press", diag));
  EXPECT_TRUE(slot->changed());
  EXPECT_TRUE(ops.fireAction("o", "button", diag)) << "the button is a member of the slot's value";
  EXPECT_EQ(fired(), 2);
  for (const std::string name : {"number", "nothing", "bare", "hollow"})
    expectError(ops.fireAction("o", name, diag), "o: error: \"o." + name + "\" is not an action.");
  expectError(ops.fireAction("o", "blank", diag), "o: error: \"o.blank\" holds no action to fire.");
  expectError(ops.fireAction("o", "missing", diag), "o: error: \"o\" has no slot called \"missing\".");
}

TEST_F(TolvenQuindleOpsTest, ObjectsPublishingLooksForTheWordInTheTypesOfTheOutputs) {
  make("Reader", "r");
  make("Source", "b");
  make("Source", "a");
  VManagedObject::add(std::make_shared<Source>(), "orphan");
  EXPECT_EQ(ops.creatorOf("orphan"), "");
  EXPECT_THAT(ops.objectsPublishing("Brush"), ElementsAre("b", "a"));
  EXPECT_THAT(ops.objectsPublishing("Grid"), IsEmpty());
  EXPECT_THAT(ops.objectsPublishing(""), ElementsAre("b", "a")) << "all that have an output";
}

TEST_F(TolvenQuindleOpsTest, ConsumersAreNamedOnceAndNeverTheObjectItself) {
  make("Source", "s");
  make("Reader", "r1");
  make("Reader", "r2");
  for (const auto& [reader, slot] :
       {std::pair{"r2", "height"}, {"r1", "height"}, {"r1", "depth"}, {"s", "size"}})
    ASSERT_TRUE(ops.connect(reader, slot, "s", "length", diag));
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
  expectError(ops.createConsumer("Reader", "Reader", "", diag),
              "Reader: error: Nothing can read what \"Reader\" publishes.");
  for (const auto& [creator, way] : {std::pair{"Test/Oddity", ""}, {"Nobody", ""}, {"Reader", "sideways"}})
    expectError(ops.createConsumer("s", creator, way, diag),
                "s: error: \"" + std::string(creator) + "\" cannot read what \"s\" publishes.");
  for (const std::string creator : {"Never", "Refuser"}) {
    expectError(ops.createConsumer("s", creator, "", diag),
                "s: error: \"" + creator + "\" could not be attached to \"s\".");
    EXPECT_FALSE(ops.exists(creator));
  }
}

TEST_F(TolvenQuindleOpsTest, SettleStopsAfterAHundredRoundsAndGoesOnWithTheNextCall) {
  make("Busy", "b");
  EXPECT_EQ(ops.settle(), 100);
  EXPECT_EQ(ops.settle(), 50);
  EXPECT_EQ(ops.settle(), 0);
}

TEST_F(TolvenQuindleOpsTest, LoadingTheLibraryMadeItsTwoValueTypesKnown) {
  for (const auto& [type, valueType] :
       {std::pair{Rethold::typeOf<double>(), Rethold::typeOf<VValue<double>>()},
        {Rethold::typeOf<StrongPtr<VAction>>(), Rethold::typeOf<VValue<StrongPtr<VAction>>>()}}) {
    const auto creator = VManagedObject::find<VValueCreator>(Rethold::Typename(valueType));
    ASSERT_NE(creator, nullptr);
    EXPECT_EQ(creator->createValue()->type(), type);
  }
}

} // namespace
} // namespace Zamt::Testing
