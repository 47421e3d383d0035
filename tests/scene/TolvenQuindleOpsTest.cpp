#include "quindle/scene/TolvenQuindleOps.h"

#include "sorbine/VCreator.h"
#include "sorbine/VScheduler.h"
#include "tests/support/Panel.h"
#include "tests/support/goldenCases.h"

#include <array>
#include <map>

namespace Zamt::Testing {

class LongBrushStroke {};

namespace {

using Rethold::StrongPtr;

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

/// What a case of the golden document asks of the scene, a line each, and what comes of it.
class Session {
public:
  Session() {
    const auto number = VAcceptInfo::of<double>("height", "number");
    const auto deep = VAcceptInfo::of<double>("depth", "deep");
    creators_ = {registerCreator<Source>("Test", "Source", {}),
                 registerCreator<Reader>("Test", "Reader", {0, "", "", {number, deep}}),
                 registerCreator<Refuser>("Test", "Refuser", {0, "", "", {number}}),
                 registerCreator<Oddity>("Test", "Oddity", {}),
                 registerCreator<Heir>("Test", "Heir", {}),
                 registerCreator<Busy>("Test", "Busy", {}),
                 registerCreator<Twin>("Test", "Twin", {}),
                 registerCreator("Test", "Never", {0, "", "", {number}}, [] { return nullptr; })};
    fired() = 0;
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session() {
    VManagedObject::clear();
    for (const auto& creator : creators_) creator->remove();
  }

  std::string play(const std::string& text) {
    std::string told;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
      std::istringstream words(line);
      Words about;
      std::string verb;
      words >> verb;
      for (std::string& word : about) words >> word;
      diag_.clear();
      told += line + ": " + verbs_.at(verb)(about) + '\n';
      if (!diag_.entries.empty()) told += "  " + diag_.format() + '\n';
    }
    return told;
  }

private:
  using Words = std::array<std::string, 4>;

  static std::string yes(bool good) { return good ? "yes" : "no"; }

  static std::string all(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
  }

  std::string value(const std::string& object, const std::string& slot) {
    std::string value = "as it was";
    const bool good = ops_.getParam(object, slot, value, diag_);
    EXPECT_TRUE(good || value == "as it was");
    return good ? value : "no";
  }

  static std::string changed(const std::string& object, const std::string& slot) {
    return yes(VManagedObject::find<VObject>(object)->getSlot(slot)->changed());
  }

  static std::string addOrphan(const std::string& name) {
    VManagedObject::add(std::make_shared<Source>(), name);
    return "yes";
  }

  TolvenQuindleOps ops_{std::make_shared<ValuePool>()};
  Diag diag_;
  std::vector<StrongPtr<VCreatorBase>> creators_;
  const std::map<std::string, std::function<std::string(const Words&)>> verbs_{
      {"create", [this](const Words& w) { return ops_.create("Test/" + w[0], w[1], diag_); }},
      {"read", [this](const Words& w) { return ops_.createConsumer(w[0], w[1], w[2], diag_); }},
      {"connect", [this](const Words& w) { return yes(ops_.connect(w[0], w[1], w[2], w[3], diag_)); }},
      {"set", [this](const Words& w) { return yes(ops_.setParam(w[0], w[1], w[2], diag_)); }},
      {"get", [this](const Words& w) { return value(w[0], w[1]); }},
      {"fire", [this](const Words& w) { return yes(ops_.fireAction(w[0], w[1], diag_)); }},
      {"remove", [this](const Words& w) { return yes(ops_.removeObject(w[0], diag_)); }},
      {"resolve", [this](const Words& w) { return yes(ops_.resolve(w[0], diag_) != nullptr); }},
      {"exists", [this](const Words& w) { return yes(ops_.exists(w[0])); }},
      {"source", [this](const Words& w) { return ops_.sourceOf(w[0], w[1]); }},
      {"creator", [this](const Words& w) { return ops_.creatorOf(w[0]); }},
      {"status", [this](const Words& w) { return ops_.statusOf(w[0]); }},
      {"readers", [this](const Words& w) { return all(ops_.consumersOf(w[0])); }},
      {"publishing", [this](const Words& w) { return all(ops_.objectsPublishing(w[0])); }},
      {"settle", [this](const Words& /*none*/) { return std::to_string(ops_.settle()); }},
      {"changed", [](const Words& w) { return changed(w[0], w[1]); }},
      {"orphan", [](const Words& w) { return addOrphan(w[0]); }},
      {"fired", [](const Words& /*none*/) { return std::to_string(fired()); }},
  };
};

TEST(TolvenQuindleOps, DoesAndAnswersWhatTheGoldenDocumentShows) {
  expectCases("scene/golden/operations.md", [](const std::string& text) { return Session().play(text); });
}

TEST(TolvenQuindleOps, LoadingTheLibraryMadeItsTwoValueTypesKnown) {
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
