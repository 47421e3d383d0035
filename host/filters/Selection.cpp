#include "host/filters/Selection.h"

#include "files/Interruption.h"

#include <tbb/enumerable_thread_specific.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <span>
#include <utility>

namespace Zamt::Host {
namespace {

using Step = SelectionStep;
using PointList = std::vector<std::uint32_t>;

constexpr int noStep = -1;

// Below this many points a filter is asked about each of them at once; working out what it knows of the whole
// block, the block's bounds for one, would look at more points than that.
constexpr std::size_t coverageWorthwhile = blockPoints / 8;

// What is done to the points of one block. Lists of points live in slots, which are used again as soon as
// their last reader is through: a block needs as many as there are lists alive at once, however many steps
// there are.
struct BlockWork {
  enum class Kind { All, Load, Filter, Union, Copy, Store };
  Kind kind = Kind::All;
  int step = noStep;        // Whose filter is asked, or whose mask is loaded or stored.
  std::size_t target = 0;   // The slot written.
  std::size_t source = 0;   // The slot read,
  std::size_t other = 0;    // and the second one of a union.
  bool lastReading = false; // The source may be changed in place.
};

bool isCloudStep(const Step& step) { return step.cloudFilter != nullptr; }
bool isUnion(const Step& step) { return !step.filter && !step.cloudFilter && step.other >= 0; }

bool refersOnlyBack(const std::vector<Step>& steps) {
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const auto self = static_cast<int>(i);
    if (steps[i].source < noStep || steps[i].source >= self || steps[i].other < noStep ||
        steps[i].other >= self)
      return false;
  }
  return true;
}

// How many results have to be kept at once to work out each step, were each used only once: a tree needs no
// more than the logarithm of its size when the larger side goes first.
std::vector<int> countKept(const std::vector<Step>& steps) {
  std::vector<int> kept(steps.size(), 1);
  const auto keptFor = [&](int step) { return step < 0 ? 0 : kept[static_cast<std::size_t>(step)]; };
  for (std::size_t i = 0; i < steps.size(); ++i) {
    kept[i] = std::max(1, keptFor(steps[i].source));
    if (!isUnion(steps[i])) continue;
    const int other = keptFor(steps[i].other);
    kept[i] = kept[i] == other ? other + 1 : std::max(kept[i], other);
  }
  return kept;
}

// The steps that the last one depends on, each behind those it depends on.
std::vector<int> orderSteps(const std::vector<Step>& steps) {
  const std::vector<int> kept = countKept(steps);
  std::vector<char> seen(steps.size(), 0);
  std::vector<std::pair<int, bool>> open{{static_cast<int>(steps.size()) - 1, false}};
  std::vector<int> order;
  while (!open.empty()) {
    const auto [index, ready] = open.back();
    open.pop_back();
    if (ready) order.push_back(index);
    if (ready || index < 0 || seen[static_cast<std::size_t>(index)] != 0) continue;
    seen[static_cast<std::size_t>(index)] = 1;
    open.emplace_back(index, true);
    const Step& step = steps[static_cast<std::size_t>(index)];
    int first = step.source;
    int second = isUnion(step) ? step.other : noStep;
    if (first >= 0 && second >= 0 &&
        kept[static_cast<std::size_t>(second)] > kept[static_cast<std::size_t>(first)])
      std::swap(first, second);
    open.emplace_back(second, false);
    open.emplace_back(first, false);
  }
  return order;
}

// Slots in use and free ones.
class SlotPool {
public:
  std::size_t take() {
    if (unused.empty()) return made++;
    const std::size_t slot = unused.back();
    unused.pop_back();
    return slot;
  }
  void giveBack(std::size_t slot) { unused.push_back(slot); }
  std::size_t count() const { return made; }

private:
  std::vector<std::size_t> unused;
  std::size_t made = 0;
};

// The slots that one thread works in.
using Slots = std::vector<PointList>;

void keepHolding(PointList& list, const std::vector<std::uint8_t>& holds, bool invert) {
  const unsigned flip = invert ? 1 : 0;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < list.size(); ++i) {
    list[kept] = list[i];
    kept += (holds[i] ^ flip) & 1U;
  }
  list.resize(kept);
}

void applyFilter(const Step& step, std::uint64_t first, PointList& list) {
  if (list.empty()) return;
  auto coverage = PointFilter::Coverage::Some;
  if (list.size() >= coverageWorthwhile) coverage = step.filter->coverage(first);
  if (coverage != PointFilter::Coverage::Some) {
    if ((coverage == PointFilter::Coverage::None) != step.invert) list.clear();
    return;
  }
  std::vector<std::uint8_t> holds(list.size());
  step.filter->test(first, list, holds);
  keepHolding(list, holds, step.invert);
}

void unite(PointList& into, const PointList& one, const PointList& other) {
  PointList both;
  both.reserve(std::max(one.size(), other.size()));
  std::set_union(one.begin(), one.end(), other.begin(), other.end(), std::back_inserter(both));
  into = std::move(both);
}

// Works through the ordered steps, runs of block work between the filters that ask about whole clouds.
class Evaluation {
public:
  Evaluation(const PointCloud& pointCloud, const std::vector<Step>& selectionSteps)
      : cloud(pointCloud),
        steps(selectionSteps),
        order(orderSteps(steps)),
        readers(steps.size(), 0),
        masks(steps.size()),
        slotOf(steps.size(), noSlot) {
    for (const int index : order) {
      const Step& step = at(index);
      if (step.source >= 0) ++readers[static_cast<std::size_t>(step.source)];
      if (isUnion(step)) ++readers[static_cast<std::size_t>(step.other)];
    }
    ++readers.back(); // The caller reads the last one.
  }

  bool run(PointMask& result, std::string& problem) {
    std::size_t from = 0;
    while (from < order.size()) {
      if (interrupted) return stop(problem);
      if (isCloudStep(at(order[from]))) {
        if (!runCloudStep(order[from], problem)) return false;
        ++from;
        continue;
      }
      std::size_t to = from;
      while (to < order.size() && !isCloudStep(at(order[to]))) ++to;
      runBlocks(std::span(order).subspan(from, to - from));
      from = to;
    }
    if (interrupted) return stop(problem);
    result = std::move(masks.back());
    return true;
  }

private:
  static constexpr std::size_t noSlot = ~std::size_t{0};

  const Step& at(int index) const { return steps[static_cast<std::size_t>(index)]; }

  static bool stop(std::string& problem) {
    problem = interruptedMessage;
    return false;
  }

  // One reader of a step's whole mask is through.
  void release(int index) {
    if (index >= 0 && --readers[static_cast<std::size_t>(index)] == 0)
      masks[static_cast<std::size_t>(index)] = PointMask();
  }

  bool runCloudStep(int index, std::string& problem) {
    const Step& step = at(index);
    PointMask everything;
    if (step.source < 0) everything = PointMask(cloud.size(), true);
    const PointMask& asked = step.source < 0 ? everything : masks[static_cast<std::size_t>(step.source)];
    PointMask holds(cloud.size());
    if (!step.cloudFilter->test(asked, holds, problem)) return false;
    for (std::size_t w = 0; w < holds.raw().size(); ++w) {
      std::uint64_t& word = holds.raw()[w];
      word = asked.raw()[w] & (step.invert ? ~word : word);
    }
    masks[static_cast<std::size_t>(index)] = std::move(holds);
    release(step.source);
    return true;
  }

  void runBlocks(std::span<const int> run) {
    const std::vector<BlockWork> work = planBlocks(run);
    const std::uint64_t blocks = (cloud.size() + blockPoints - 1) / blockPoints;
    tbb::enumerable_thread_specific<Slots> slots{Slots(pool.count())};
    tbb::parallel_for(std::uint64_t{0}, blocks, [&](std::uint64_t block) {
      if (!interrupted) runBlock(block * blockPoints, work, slots.local());
    });
    for (const int index : loaded)
      for (; readsInRun[static_cast<std::size_t>(index)] > 0; --readsInRun[static_cast<std::size_t>(index)])
        release(index);
    loaded.clear();
  }

  std::vector<BlockWork> planBlocks(std::span<const int> run) {
    std::vector<BlockWork> work;
    pool = SlotPool();
    readsInRun.resize(steps.size(), 0);
    left.resize(steps.size(), 0);
    countReads(run);
    for (const int index : run) planStep(index, work);
    return work;
  }

  // Counts for each step how often this run reads it.
  void countReads(std::span<const int> run) {
    for (const int index : run) {
      const Step& step = at(index);
      if (step.source >= 0) ++left[static_cast<std::size_t>(step.source)];
      if (isUnion(step)) ++left[static_cast<std::size_t>(step.other)];
    }
  }

  void planStep(int index, std::vector<BlockWork>& work) {
    const Step& step = at(index);
    BlockWork todo;
    todo.step = index;
    todo.source = slotFor(step.source, work);
    if (isUnion(step)) todo.other = slotFor(step.other, work);
    todo.kind = isUnion(step) ? BlockWork::Kind::Union
                : step.filter ? BlockWork::Kind::Filter
                              : BlockWork::Kind::Copy;
    const bool sourceDone = finishRead(step.source);
    const bool otherDone = isUnion(step) && finishRead(step.other);
    todo.lastReading = sourceDone && todo.kind != BlockWork::Kind::Union;
    if (todo.lastReading) {
      todo.target = todo.source;
    } else {
      todo.target = pool.take();
      if (sourceDone) pool.giveBack(todo.source);
      if (otherDone && !(sourceDone && todo.other == todo.source)) pool.giveBack(todo.other);
    }
    work.push_back(todo);
    finishStep(index, todo.target, work);
  }

  // Keeps the step's list for the readers in this run, and its mask for those behind it.
  void finishStep(int index, std::size_t slot, std::vector<BlockWork>& work) {
    const auto i = static_cast<std::size_t>(index);
    if (readers[i] > left[i]) {
      masks[i] = PointMask(cloud.size());
      work.push_back({BlockWork::Kind::Store, index, 0, slot, 0, false});
    }
    readers[i] -= left[i];
    if (left[i] == 0)
      pool.giveBack(slot);
    else
      slotOf[i] = slot;
  }

  // The slot in which a step's list lies, loaded from its mask where an earlier run made it.
  std::size_t slotFor(int index, std::vector<BlockWork>& work) {
    if (index < 0) {
      const std::size_t slot = pool.take();
      work.push_back({BlockWork::Kind::All, index, slot, 0, 0, false});
      return slot;
    }
    const auto i = static_cast<std::size_t>(index);
    if (slotOf[i] != noSlot) return slotOf[i];
    slotOf[i] = pool.take();
    work.push_back({BlockWork::Kind::Load, index, slotOf[i], 0, 0, false});
    loaded.push_back(index);
    readsInRun[i] = left[i];
    return slotOf[i];
  }

  // True when nothing further in this run reads the step's slot.
  bool finishRead(int index) {
    if (index < 0) return true;
    const auto i = static_cast<std::size_t>(index);
    if (--left[i] > 0) return false;
    slotOf[i] = noSlot;
    return true;
  }

  void runBlock(std::uint64_t first, const std::vector<BlockWork>& work, Slots& slots) {
    for (const BlockWork& todo : work) {
      PointList& target = slots[todo.target];
      switch (todo.kind) {
      case BlockWork::Kind::All:
        target.resize(static_cast<std::size_t>(std::min<std::uint64_t>(blockPoints, cloud.size() - first)));
        std::iota(target.begin(), target.end(), 0U);
        break;
      case BlockWork::Kind::Load:
        target.clear();
        masks[static_cast<std::size_t>(todo.step)].listBlock(first, target);
        break;
      case BlockWork::Kind::Filter:
        if (!todo.lastReading) target = slots[todo.source];
        applyFilter(at(todo.step), first, target);
        break;
      case BlockWork::Kind::Copy:
        if (!todo.lastReading) target = slots[todo.source];
        break;
      case BlockWork::Kind::Union: unite(target, slots[todo.source], slots[todo.other]); break;
      case BlockWork::Kind::Store: store(todo.step, first, slots[todo.source]); break;
      }
    }
  }

  void store(int step, std::uint64_t first, const PointList& list) {
    std::vector<std::uint64_t>& words = masks[static_cast<std::size_t>(step)].raw();
    const std::size_t base = static_cast<std::size_t>(first / 64);
    for (const std::uint32_t point : list) words[base + point / 64] |= std::uint64_t{1} << (point % 64);
  }

  const PointCloud& cloud;
  const std::vector<Step>& steps;
  std::vector<int> order;
  std::vector<std::size_t> readers; // How many steps of later runs still read this one's mask.
  std::vector<PointMask> masks;
  SlotPool pool;
  std::vector<std::size_t> slotOf;     // Where a step's list lies in the run being planned.
  std::vector<std::size_t> left;       // How often the run being planned still reads a step.
  std::vector<std::size_t> readsInRun; // How often this run reads a step that an earlier one made,
  std::vector<int> loaded;             // for these steps.
};

} // namespace

bool evaluateSelection(const PointCloud& cloud, const std::vector<SelectionStep>& steps, PointMask& result,
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
  return Evaluation(cloud, steps).run(result, problem);
}

} // namespace Zamt::Host
