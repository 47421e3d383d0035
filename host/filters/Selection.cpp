#include "host/filters/Selection.h"

#include "host/clouds/forEachBlock.h"
#include "host/filters/SelectionPlan.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <oneapi/tbb/enumerable_thread_specific.h>
#include <utility>

namespace Zamt::Host {

namespace {

using Steps = std::vector<SelectionStep>;
using PointList = std::vector<std::uint32_t>;

/// With less than one in this many of a block's points left, a filter is asked about each of them at once;
/// working out what it knows of the whole block, the block's bounds for one, would look at more points than
/// that.
constexpr std::size_t coverageWorthwhile = 8;

/// What one thread works with.
struct Room {
  std::vector<PointList> slots;
  PointList joined;
  std::vector<std::uint8_t> holds;
};

bool refersOnlyBack(const Steps& steps) {
  const auto isBehind = [](int reference, std::size_t place) {
    return reference >= -1 && reference < static_cast<int>(place);
  };
  for (std::size_t i = 0; i < steps.size(); ++i)
    if (!isBehind(steps[i].source, i) || !isBehind(steps[i].other, i)) return false;
  return true;
}

void keepHolding(PointList& list, const std::vector<std::uint8_t>& holds, bool invert) {
  const unsigned flip = invert ? 1 : 0;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < list.size(); ++i) {
    list[kept] = list[i];
    kept += (holds[i] ^ flip) & 1U;
  }
  list.resize(kept);
}

void noteNear(const SelectionStep& step) {
  if (step.place) step.place->isNear = true;
}

void applyFilter(const SelectionStep& step, BlockReader& block, PointList& list,
                 std::vector<std::uint8_t>& holds) {
  if (list.empty()) return;
  auto coverage = PointFilter::Coverage::Some;
  if (list.size() * coverageWorthwhile >= block.size()) coverage = step.filter->coverage(block);
  if (coverage == PointFilter::Coverage::All) noteNear(step);
  if (coverage != PointFilter::Coverage::Some) {
    if ((coverage == PointFilter::Coverage::None) != step.invert) list.clear();
    return;
  }
  holds.resize(list.size());
  step.filter->test(block, list, holds);
  if (step.place && !step.place->isNear && std::ranges::find(holds, 1) != holds.end()) noteNear(step);
  keepHolding(list, holds, step.invert);
}

void unite(const PointList& one, const PointList& other, PointList& joined) {
  joined.clear();
  joined.reserve(std::max(one.size(), other.size()));
  std::ranges::set_union(one, other, std::back_inserter(joined));
}

/// Does what was planned, stage by stage.
class Evaluation {
public:
  Evaluation(const PointCloud& cloud, const Steps& steps, const Stop& stop)
      : cloud_(cloud), steps_(steps), stop_(stop), masks_(steps.size()) {}

  bool run(PointMask& result, std::string& problem) {
    for (const SelectionStage& stage : planSelection(steps_)) {
      for (const int step : stage.made) mask(step) = PointMask(cloud_.size());
      if (stage.cloudStep >= 0 ? !runCloudStep(stage.cloudStep, problem) : !runBlocks(stage, problem))
        return false;
      for (const int step : stage.done) mask(step) = PointMask();
    }
    result = std::move(masks_.back());
    return true;
  }

private:
  const SelectionStep& step(const BlockWork& work) const {
    return steps_[static_cast<std::size_t>(work.step)];
  }
  PointMask& mask(int step) { return masks_[static_cast<std::size_t>(step)]; }

  bool runCloudStep(int index, std::string& problem) {
    if (stop_.requested()) {
      problem = stoppedMessage;
      return false;
    }
    const SelectionStep& step = steps_[static_cast<std::size_t>(index)];
    PointMask everything;
    if (step.source < 0) everything = PointMask(cloud_.size(), true);
    const PointMask& asked = step.source < 0 ? everything : mask(step.source);
    PointMask& holds = mask(index);
    if (!step.cloudFilter->test(asked, stop_, holds, problem)) return false;
    for (std::size_t w = 0; w < holds.raw().size(); ++w) {
      std::uint64_t& word = holds.raw()[w];
      word = asked.raw()[w] & (step.invert ? ~word : word);
    }
    return true;
  }

  bool runBlocks(const SelectionStage& stage, std::string& problem) {
    tbb::enumerable_thread_specific<Room> rooms(Room{std::vector<PointList>(stage.slots), {}, {}});
    const auto visit = [&](BlockReader& block) {
      Room& room = rooms.local();
      for (const BlockWork& work : stage.work) doWork(work, block, room);
    };
    return forEachBlock(cloud_, columnsOf(stage), stop_, visit, problem);
  }

  std::vector<ColumnKey> columnsOf(const SelectionStage& stage) const {
    std::vector<ColumnKey> columns;
    for (const BlockWork& work : stage.work)
      if (work.kind == BlockWork::Kind::Filter) step(work).filter->listColumns(cloud_, columns);
    return columns;
  }

  void doWork(const BlockWork& work, BlockReader& block, Room& room) {
    PointList& target = room.slots[work.target];
    const PointList& source = room.slots[work.source];
    switch (work.kind) {
    case BlockWork::Kind::All:
      target.resize(block.size());
      std::iota(target.begin(), target.end(), 0U);
      return;
    case BlockWork::Kind::Load:
      target.clear();
      mask(work.step).list(block.first(), block.size(), target);
      return;
    case BlockWork::Kind::Filter:
      if (&target != &source) target = source;
      return applyFilter(step(work), block, target, room.holds);
    case BlockWork::Kind::Copy:
      if (&target != &source) target = source;
      return;
    case BlockWork::Kind::Union:
      unite(source, room.slots[work.other], room.joined);
      return std::swap(target, room.joined);
    case BlockWork::Kind::Store: return mask(work.step).add(block.first(), source);
    }
  }

  const PointCloud& cloud_;
  const Steps& steps_;
  const Stop& stop_;
  std::vector<PointMask> masks_;
};

} // namespace

bool evaluateSelection(const PointCloud& cloud, const Steps& steps, const Stop& stop, PointMask& result,
                       std::string& problem) {
  if (steps.empty()) {
    result = PointMask(cloud.size(), true);
    return true;
  }
  if (!refersOnlyBack(steps)) {
    problem = "A step of the selection refers to a later one. Order the steps so that each comes after those "
              "it reads.";
    return false;
  }
  return Evaluation(cloud, steps, stop).run(result, problem);
}

} // namespace Zamt::Host
