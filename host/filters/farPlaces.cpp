#include "host/clouds/forEachBlock.h"
#include "host/filters/FieldLookup.h"
#include "host/filters/Selection.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <mutex>

namespace Zamt::Host {

namespace {

/// So many digits tell places apart without what rounding adds.
constexpr int shownDigits = 12;

bool touch(const Bounds& one, const Bounds& other) {
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (one.high[axis] < other.low[axis] || one.low[axis] > other.high[axis]) return false;
  return true;
}

void join(Bounds& all, const Bounds& box) {
  const bool first = all.empty();
  for (std::size_t axis = 0; axis < 3; ++axis) {
    all.low[axis] = first ? box.low[axis] : std::min(all.low[axis], box.low[axis]);
    all.high[axis] = first ? box.high[axis] : std::max(all.high[axis], box.high[axis]);
  }
}

std::string numberText(double value) {
  std::array<char, 32> text{};
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, shownDigits);
  return {text.data(), end.ptr};
}

/// "x 1 .. 2, y 3 .. 4", without directions in which it has no end.
std::string boxText(const Bounds& box) {
  std::string text;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (std::isinf(box.low[axis]) && std::isinf(box.high[axis])) continue;
    if (!text.empty()) text += ", ";
    (text += "xyz"[axis]) += ' ' + numberText(box.low[axis]) + " .. " + numberText(box.high[axis]);
  }
  return text;
}

} // namespace

bool findFarPlaces(const PointCloud& cloud, const std::vector<SelectionStep>& steps, const Stop& stop,
                   std::vector<std::string>& warnings, std::string& problem) {
  std::vector<const StepPlace*> far;
  for (const SelectionStep& step : steps)
    if (step.place && !step.place->isNear && !step.place->box.empty()) far.push_back(step.place.get());
  if (far.empty() || cloud.size() == 0) return true;
  std::mutex joining;
  Bounds all;
  const auto visit = [&](BlockReader& block) {
    const Bounds box = block.bounds();
    if (box.empty()) return;
    const std::lock_guard lock(joining);
    join(all, box);
    std::erase_if(far, [&](const StepPlace* place) { return touch(box, place->box); });
  };
  if (!forEachBlock(cloud, axisColumns, stop, visit, problem)) return false;
  for (const StepPlace* const place : far)
    warnings.push_back("No point is near " + place->what + ", which takes up " + boxText(place->box) +
                       ", while the cloud takes up " + boxText(all) +
                       ". Check that both are in the same coordinates.");
  return true;
}

} // namespace Zamt::Host
