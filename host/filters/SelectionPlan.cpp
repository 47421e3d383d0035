#include "host/filters/SelectionPlan.h"

#include <algorithm>
#include <utility>

namespace Zamt::Host {

namespace {

using Steps = std::vector<SelectionStep>;

constexpr std::size_t noSlot = ~std::size_t{0};

std::size_t placeOf(int step) { return static_cast<std::size_t>(step); }

/// The second step that a step reads; -1 if it has none.
int otherOf(const SelectionStep& step) { return isUnion(step) ? step.other : -1; }

/// How many results have to be kept at once to work out each step, were each used only once: a tree needs no
/// more than the logarithm of its size when the larger side goes first.
std::vector<int> countKept(const Steps& steps) {
  std::vector<int> kept(steps.size(), 1);
  const auto keptFor = [&](int step) { return step < 0 ? 0 : kept[placeOf(step)]; };
  for (std::size_t i = 0; i < steps.size(); ++i) {
    kept[i] = std::max(1, keptFor(steps[i].source));
    if (!isUnion(steps[i])) continue;
    const int other = keptFor(steps[i].other);
    kept[i] = kept[i] == other ? other + 1 : std::max(kept[i], other);
  }
  return kept;
}

/// The steps that the last one depends on, each behind those it depends on.
std::vector<int> orderSteps(const Steps& steps) {
  const std::vector<int> kept = countKept(steps);
  std::vector<char> seen(steps.size(), 0);
  std::vector<std::pair<int, bool>> open{{static_cast<int>(steps.size()) - 1, false}};
  std::vector<int> order;
  while (!open.empty()) {
    const auto [index, ready] = open.back();
    open.pop_back();
    if (ready) order.push_back(index);
    if (ready || index < 0 || seen[placeOf(index)] != 0) continue;
    seen[placeOf(index)] = 1;
    open.emplace_back(index, true);
    int first = steps[placeOf(index)].source;
    int second = otherOf(steps[placeOf(index)]);
    if (first >= 0 && second >= 0 && kept[placeOf(second)] > kept[placeOf(first)]) std::swap(first, second);
    open.emplace_back(second, false);
    open.emplace_back(first, false);
  }
  return order;
}

/// What the planner knows of one step.
struct Use {
  std::size_t readers = 0; ///< That are still to come,
  std::size_t here = 0;    ///< and how many of them are in the stage being planned.
  std::size_t slot = noSlot;
  bool loaded = false; ///< Into that slot, from the mask of an earlier stage.
};

class Planner {
public:
  explicit Planner(const Steps& steps) : steps_(steps), uses_(steps.size()) {}

  std::vector<SelectionStage> plan() {
    const std::vector<int> order = orderSteps(steps_);
    for (const int index : order) forEachSource(index, [](Use& use) { ++use.readers; });
    ++uses_.back().readers; // The caller reads the last one.
    for (auto from = order.begin(); from != order.end();) {
      stages_.emplace_back();
      if (isCloudStep(*from)) {
        planCloudStep(*from++);
        continue;
      }
      const auto to = std::find_if(from, order.end(), [this](int index) { return isCloudStep(index); });
      planBlocks(from, to);
      from = to;
    }
    return std::move(stages_);
  }

private:
  using Place = std::vector<int>::const_iterator;

  const SelectionStep& step(int index) const { return steps_[placeOf(index)]; }
  Use& use(int index) { return uses_[placeOf(index)]; }
  SelectionStage& stage() { return stages_.back(); }
  bool isCloudStep(int index) const { return step(index).cloudFilter != nullptr; }

  template <class Visit>
  void forEachSource(int index, Visit visit) {
    for (const int source : {step(index).source, otherOf(step(index))})
      if (source >= 0) visit(use(source));
  }

  void planCloudStep(int index) {
    stage().cloudStep = index;
    stage().made.push_back(index);
    const int source = step(index).source;
    if (source >= 0 && --use(source).readers == 0) stage().done.push_back(source);
  }

  void planBlocks(Place from, Place to) {
    unused_.clear();
    for (Place at = from; at != to; ++at) forEachSource(*at, [](Use& use) { ++use.here; });
    for (Place at = from; at != to; ++at) planStep(*at);
  }

  void planStep(int index) {
    BlockWork work;
    work.step = index;
    work.kind = isUnion(step(index)) ? BlockWork::Kind::Union
                : step(index).filter ? BlockWork::Kind::Filter
                                     : BlockWork::Kind::Copy;
    const bool joins = work.kind == BlockWork::Kind::Union;
    work.source = slotFor(step(index).source);
    if (joins) work.other = slotFor(step(index).other);
    const bool sourceRead = finishRead(step(index).source);
    const bool otherRead = joins && finishRead(step(index).other);
    // A union is made beside what it reads.
    work.target = sourceRead && !joins ? work.source : takeSlot();
    if (sourceRead && joins) unused_.push_back(work.source);
    if (otherRead) unused_.push_back(work.other);
    stage().work.push_back(work);
    finishStep(index, work.target);
  }

  /// Keeps the step's list for its readers in this stage, and its mask for those behind.
  void finishStep(int index, std::size_t slot) {
    if (use(index).readers > use(index).here) {
      stage().made.push_back(index);
      stage().work.push_back({BlockWork::Kind::Store, index, 0, slot, 0});
    }
    if (use(index).here == 0)
      unused_.push_back(slot);
    else
      use(index).slot = slot;
  }

  /// The slot in which a step's list lies, loaded from its mask where an earlier stage made it.
  std::size_t slotFor(int index) {
    if (index >= 0 && use(index).slot != noSlot) return use(index).slot;
    const std::size_t slot = takeSlot();
    const auto kind = index < 0 ? BlockWork::Kind::All : BlockWork::Kind::Load;
    stage().work.push_back({kind, index, slot, 0, 0});
    if (index < 0) return slot;
    use(index).slot = slot;
    use(index).loaded = true;
    return slot;
  }

  /// True when nothing further in this stage reads the step's slot.
  bool finishRead(int index) {
    if (index < 0) return true;
    Use& read = use(index);
    --read.readers;
    if (--read.here > 0) return false;
    read.slot = noSlot;
    if (read.loaded && read.readers == 0) stage().done.push_back(index);
    read.loaded = false;
    return true;
  }

  std::size_t takeSlot() {
    if (unused_.empty()) return stage().slots++;
    const std::size_t slot = unused_.back();
    unused_.pop_back();
    return slot;
  }

  const Steps& steps_;
  std::vector<Use> uses_;
  std::vector<SelectionStage> stages_;
  std::vector<std::size_t> unused_; ///< Slots of the stage being planned that nothing lies in.
};

} // namespace

std::vector<SelectionStage> planSelection(const Steps& steps) { return Planner(steps).plan(); }

} // namespace Zamt::Host
