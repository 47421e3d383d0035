#include "host/filters/Selection.h"

#include "host/filters/RangeFilter.h"
#include "tests/filters/FilterClouds.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <atomic>
#include <random>

namespace Zamt::Host {
namespace {

/// Whether a made-up condition holds at a point; whole blocks answer alike for some.
bool madeUp(std::uint64_t seed, std::size_t block, std::uint64_t point) {
  if (seed % 5 == 0 && block % 2 == 0) return seed % 2 == 0;
  return ((point + 1) * (seed * 2 + 1) * 0x9E3779B97F4A7C15U >> 40) % 3 != 0;
}

class MadeUpFilter : public PointFilter {
public:
  explicit MadeUpFilter(std::uint64_t number) : seed(number) {}
  void test(BlockReader& block, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    tested += indices.size();
    for (std::size_t i = 0; i < indices.size(); ++i)
      holds[i] = madeUp(seed, block.block(), block.first() + indices[i]) ? 1 : 0;
  }
  void listColumns(const PointCloud& /*cloud*/, std::vector<ColumnKey>& /*columns*/) const override {}
  Coverage coverage(BlockReader& block) const override {
    if (seed % 5 != 0 || block.block() % 2 != 0) return Coverage::Some;
    return seed % 2 == 0 ? Coverage::All : Coverage::None;
  }
  std::uint64_t pointsTested() const { return tested; }

private:
  std::uint64_t seed;
  mutable std::atomic<std::uint64_t> tested = 0;
};

/// The block of each point.
std::vector<std::size_t> blocksOf(const PointCloud& cloud) {
  std::vector<std::size_t> blocks;
  for (std::size_t block = 0; block < cloud.blocks().size(); ++block)
    blocks.insert(blocks.end(), cloud.blocks().count(block), block);
  return blocks;
}

class MadeUpCloudFilter : public CloudFilter {
public:
  MadeUpCloudFilter(std::uint64_t number, std::vector<std::size_t> blocksOfPoints)
      : seed(number), blocks(std::move(blocksOfPoints)) {}
  bool test(const PointMask& asked, const Stop& /*stop*/, PointMask& holds,
            std::string& problem) const override {
    if (seed == 0) {
      problem = "It can't be known.";
      return false;
    }
    for (std::uint64_t i = 0; i < asked.size(); ++i)
      if (asked.test(i) && madeUp(seed, blocks[i], i)) holds.set(i);
    return true;
  }

private:
  std::uint64_t seed;
  std::vector<std::size_t> blocks;
};

std::shared_ptr<PointCloud> makeCloud(std::size_t points) {
  return Testing::makeTestCloud(std::vector<Testing::TestPoint>(points));
}

SelectionStep join(int one, int other) { return {one, other, nullptr, nullptr, false}; }

/// What a step is, so that it can be worked out a second way.
struct Described {
  SelectionStep step;
  std::uint64_t seed = 0;
};

Described makeStep(std::mt19937& random, int index, int cloudFiltersInTen,
                   const std::vector<std::size_t>& blocks) {
  Described made;
  const auto earlier = [&] { return static_cast<int>(random() % static_cast<unsigned>(index + 1)) - 1; };
  // Mostly the step before, as in chains, and sometimes any.
  made.step.source = random() % 3 == 0 ? earlier() : index - 1;
  made.step.invert = random() % 3 == 0;
  made.seed = random() % 1000 + 1;
  const int kind = static_cast<int>(random() % 10);
  if (kind < cloudFiltersInTen)
    made.step.cloudFilter = std::make_shared<MadeUpCloudFilter>(made.seed, blocks);
  else if (kind == 8)
    made.step.invert = false;
  else if (kind >= 6 && index > 0)
    made.step.other = static_cast<int>(random() % static_cast<unsigned>(index));
  else
    made.step.filter = std::make_shared<MadeUpFilter>(made.seed);
  return made;
}

std::vector<std::vector<bool>> evaluateNaively(const std::vector<Described>& steps,
                                               const std::vector<std::size_t>& blocks) {
  const std::size_t points = blocks.size();
  std::vector<std::vector<bool>> kept;
  for (const Described& d : steps) {
    std::vector<bool> result =
        d.step.source < 0 ? std::vector<bool>(points, true) : kept[static_cast<std::size_t>(d.step.source)];
    for (std::size_t i = 0; i < points; ++i) {
      if (d.step.filter || d.step.cloudFilter)
        result[i] = result[i] && madeUp(d.seed, blocks[i], i) != d.step.invert;
      else if (d.step.other >= 0)
        result[i] = result[i] || kept[static_cast<std::size_t>(d.step.other)][i];
    }
    kept.push_back(std::move(result));
  }
  return kept;
}

TEST(Selection, AgreesWithBooleanEvaluationOnRandomGraphs) {
  const auto file = makeCloud(2 * blockPoints + 100);
  std::mt19937 random(11);
  for (const auto& cloud : {file, Testing::asArrays(*file)}) {
    const std::vector<std::size_t> blocks = blocksOf(*cloud);
    for (int round = 0; round < 60; ++round) {
      std::vector<Described> described;
      std::vector<SelectionStep> steps;
      const int count = 1 + static_cast<int>(random() % 14);
      for (int i = 0; i < count; ++i) {
        described.push_back(makeStep(random, i, round % 4, blocks));
        steps.push_back(described.back().step);
      }
      PointMask result;
      std::string problem;
      ASSERT_TRUE(evaluateSelection(*cloud, steps, Testing::goOn, result, problem)) << problem;
      const std::vector<bool> expected = evaluateNaively(described, blocks).back();
      ASSERT_EQ(result.size(), expected.size());
      std::uint64_t wrong = 0;
      for (std::uint64_t i = 0; i < cloud->size(); ++i) wrong += result.test(i) != expected[i] ? 1 : 0;
      ASSERT_EQ(wrong, 0U) << "round " << round;
    }
  }
}

TEST(Selection, AStepReadByManyIsWorkedOutOnceAndOnlyWhereItsSourceKept) {
  const auto cloud = makeCloud(blockPoints + 10);
  const auto shared = std::make_shared<MadeUpFilter>(1);
  const auto behind = std::make_shared<MadeUpFilter>(2);
  std::vector<SelectionStep> steps{{-1, -1, shared, nullptr, false}};
  for (int i = 0; i < 5; ++i) steps.push_back({0, -1, behind, nullptr, i % 2 == 0});
  for (int i = 1; i < 5; ++i) steps.push_back(join(i == 1 ? 1 : static_cast<int>(steps.size()) - 1, i + 1));
  PointMask result;
  std::string problem;
  ASSERT_TRUE(evaluateSelection(*cloud, steps, Testing::goOn, result, problem));
  EXPECT_EQ(shared->pointsTested(), cloud->size());
  EXPECT_EQ(behind->pointsTested(), 5 * result.count());
}

/// Holds at the first point of those asked and nowhere else.
class FirstPointFilter : public CloudFilter {
public:
  bool test(const PointMask& asked, const Stop& /*stop*/, PointMask& holds,
            std::string& /*problem*/) const override {
    if (asked.test(0)) holds.set(0);
    return true;
  }
};

/// Alternatives one by one, each joined to those before or all joined to those behind.
std::vector<SelectionStep> makeAlternatives(int count, bool fromTheEnd) {
  std::vector<SelectionStep> steps;
  const auto filter = std::make_shared<FirstPointFilter>();
  for (int i = 0; i < count; ++i) steps.push_back({-1, -1, nullptr, filter, false});
  for (int i = 1, joined = fromTheEnd ? count - 1 : 0; i < count; ++i, joined = count + i - 2)
    steps.push_back(join(joined, fromTheEnd ? count - 1 - i : i));
  return steps;
}

long peakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss / 1024;
}

TEST(Selection, TensOfThousandsOfConditionsNeedFewMasks) {
  // Keeping all masks would take 500 MB.
  const auto cloud = makeCloud(200000);
  for (const bool fromTheEnd : {false, true}) {
    const long before = peakMegabytes();
    PointMask result;
    std::string problem;
    ASSERT_TRUE(
        evaluateSelection(*cloud, makeAlternatives(20000, fromTheEnd), Testing::goOn, result, problem))
        << problem;
    EXPECT_EQ(result.count(), 1U);
    // Sanitizers hold freed memory back for a while, up to 256 MB.
    EXPECT_LT(peakMegabytes() - before, 350);
  }
}

TEST(Selection, KeepsAllPointsWithoutStepsAndPassesOnWhyItFails) {
  const auto cloud = makeCloud(100);
  PointMask result;
  std::string problem;
  ASSERT_TRUE(evaluateSelection(*cloud, {}, Testing::goOn, result, problem));
  EXPECT_EQ(result, PointMask(100, true));
  Stop stopped;
  stopped.request();
  const auto range = [&](const PointCloud& of) {
    return SelectionStep{-1, -1, makeRangeFilter(of, "Intensity", 0, 0, 1, problem), nullptr, false};
  };
  const auto problemOf = [&](const PointCloud& of, const SelectionStep& step, const Stop& stop) {
    problem.clear();
    EXPECT_FALSE(evaluateSelection(of, {step}, stop, result, problem));
    return problem;
  };
  EXPECT_EQ(
      problemOf(*cloud,
                {-1, -1, nullptr, std::make_shared<MadeUpCloudFilter>(0, std::vector<std::size_t>()), false},
                Testing::goOn),
      "It can't be known.");
  EXPECT_EQ(
      problemOf(*cloud, join(0, -1), Testing::goOn),
      "A step of the selection refers to a later one. Order the steps so that each comes after those it "
      "reads.");
  EXPECT_EQ(problemOf(*cloud, range(*cloud), stopped), stoppedMessage);
  const auto broken = Testing::asArrays(*cloud, 2);
  EXPECT_EQ(problemOf(*broken, range(*broken), Testing::goOn),
            "A block of the arrays is broken. Make them again.");
}

} // namespace
} // namespace Zamt::Host
