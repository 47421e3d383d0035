#include "host/objects/BrushObject.h"

#include <map>

namespace Zamt::Host {

namespace {

using ObjectPtr = Rethold::StrongPtr<VObject>;

constexpr int underWay = -2; // the place of an object whose inputs are still being followed
constexpr int everyPoint = -1;

/// One object on the way back, with the places in the selection of what feeds it.
struct Frame {
  Rethold::StrongPtr<BrushObject> object;
  std::vector<const VInput<BrushObject::BrushPtr>*> inputs;
  std::vector<int> places;
};

class ChainWalk {
public:
  ChainWalk(const Grid& grid, std::vector<SelectionStep>& steps, std::string& problem)
      : grid_(grid), steps_(steps), problem_(problem) {}

  bool walk(const ObjectPtr& end) {
    if (!enter(end)) return false;
    while (!stack_.empty()) {
      Frame& top = stack_.back();
      if (top.places.size() < top.inputs.size()) {
        if (!follow(top)) return false;
      } else if (!leave(top)) {
        return false;
      }
    }
    return true;
  }

private:
  bool enter(const ObjectPtr& object) {
    auto brush = std::dynamic_pointer_cast<BrushObject>(object);
    if (!brush) {
      problem_ = "\"" + object->name() + "\" publishes a brush of a kind that cannot be followed here.";
      return false;
    }
    placeOf_[object.get()] = underWay;
    auto inputs = brush->brushInputs();
    stack_.push_back({std::move(brush), std::move(inputs), {}});
    return true;
  }

  /// Takes the next input of the object on top: its place if it is known, else it is entered.
  bool follow(Frame& top) {
    const ObjectPtr source = top.inputs[top.places.size()]->source();
    if (!source) {
      top.places.push_back(everyPoint);
      return true;
    }
    const auto known = placeOf_.find(source.get());
    if (known == placeOf_.end()) return enter(source);
    if (known->second == underWay) {
      problem_ = "The brush of \"" + source->name() +
                 "\" leads back to itself. Detach one of the connections in the circle.";
      return false;
    }
    top.places.push_back(known->second);
    return true;
  }

  bool leave(Frame& top) {
    SelectionStep step;
    if (!top.places.empty()) step.source = top.places[0];
    if (top.places.size() > 1) step.other = top.places[1];
    if (!top.object->describe(grid_, step, problem_)) return false;
    placeOf_[top.object.get()] = static_cast<int>(steps_.size());
    steps_.push_back(std::move(step));
    stack_.pop_back();
    return true;
  }

  const Grid& grid_;
  std::vector<SelectionStep>& steps_;
  std::string& problem_;
  std::vector<Frame> stack_;
  std::map<const VObject*, int> placeOf_;
};

} // namespace

bool buildSelection(const ObjectPtr& end, const Grid& grid, std::vector<SelectionStep>& steps,
                    std::string& problem) {
  return !end || ChainWalk(grid, steps, problem).walk(end);
}

} // namespace Zamt::Host
