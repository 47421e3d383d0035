#include "host/clouds/cloudStats.h"

#include "host/clouds/openCloud.h"
#include "tests/support/readCloud.h"
#include "tests/support/realClouds.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <set>

namespace Zamt::Host {
namespace {

using Testing::goOn;
using Testing::readField;

/// The values of a field against sums of their own.
void expectStats(const FieldStats& stats, std::vector<double> values) {
  SCOPED_TRACE(stats.name);
  std::erase_if(values, [](double value) { return !std::isfinite(value); });
  ASSERT_EQ(stats.values, values.size());
  if (values.empty()) return;
  long double sum = 0;
  for (const double value : values) sum += value;
  const long double mean = sum / static_cast<long double>(values.size());
  long double squares = 0;
  for (const double value : values) squares += (value - mean) * (value - mean);
  const double deviation = std::sqrt(static_cast<double>(squares / static_cast<long double>(values.size())));
  EXPECT_EQ(std::pair(stats.low, stats.high), std::pair(std::ranges::min(values), std::ranges::max(values)));
  EXPECT_NEAR(stats.mean, static_cast<double>(mean), std::abs(static_cast<double>(mean)) * 1e-14);
  EXPECT_NEAR(stats.deviation, deviation, 1e-9 * (1 + deviation));
  std::vector<std::uint64_t> counts(stats.histogram.counts().size());
  for (const double value : values)
    ++counts.at(static_cast<std::size_t>((value - stats.histogram.low()) / stats.histogram.width()));
  EXPECT_TRUE(std::ranges::equal(counts, stats.histogram.counts()));
  EXPECT_TRUE(counts.front() != 0 && counts.back() != 0);
}

TEST(CloudStats, AreWhatAddingUpGives) {
  REQUIRE_REAL_CLOUDS();
  for (const char* name : {"autzen-thin.las", "gps-time-nan.las", "extrabytes.las", "no-points.las"}) {
    SCOPED_TRACE(name);
    CloudStats stats;
    std::string problem;
    const auto cloud = openCloud(std::string(QUINDLE_TEST_DATA "/") + name, problem);
    ASSERT_NE(cloud, nullptr) << problem;
    ASSERT_TRUE(measureCloud(*cloud, goOn, stats, problem)) << problem;
    for (const FieldStats& field : stats.fields)
      expectStats(field, readField(*cloud, field.name, field.component));
    const auto x = readField(*cloud, "X");
    const auto y = readField(*cloud, "Y");
    const auto number = readField(*cloud, "ReturnNumber");
    const auto returns = readField(*cloud, "NumberOfReturns");
    const auto classes = readField(*cloud, "Classification");
    std::map<double, std::set<std::pair<double, double>>> cells;
    std::map<double, std::uint64_t> last;
    for (std::size_t i = 0; i < x.size(); ++i) {
      cells[classes[i]].emplace(std::floor(x[i]), std::floor(y[i]));
      last[classes[i]] += number[i] == returns[i] ? 1 : 0;
    }
    ASSERT_EQ(stats.classes.size(), cells.size());
    for (const ClassStats& entry : stats.classes) {
      EXPECT_EQ(entry.points.cells, cells[entry.number].size());
      EXPECT_EQ(entry.points.lastReturns, last[entry.number]);
    }
  }
}

TEST(Histogram, IsTheSameInWhateverPartsTheValuesCome) {
  std::mt19937 random(5);
  for (int round = 0; round < 300; ++round) {
    std::vector<double> values(1 + random() % 50);
    for (double& value : values) value = std::ldexp(static_cast<double>(random()) - 2e9, -40 + round % 60);
    values.push_back(INFINITY);
    Histogram whole;
    whole.add(values);
    std::ranges::shuffle(values, random);
    Histogram some;
    Histogram rest;
    some.add(std::span(values).first(values.size() / 2));
    rest.add(std::span(values).subspan(values.size() / 2));
    some.add(rest);
    EXPECT_EQ(std::pair(some.low(), some.width()), std::pair(whole.low(), whole.width()));
    EXPECT_TRUE(std::ranges::equal(some.counts(), whole.counts()));
  }
}

} // namespace
} // namespace Zamt::Host
