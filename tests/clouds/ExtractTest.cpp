#include "host/clouds/buildCloud.h"
#include "host/clouds/cloudInfo.h"
#include "host/clouds/openCloud.h"
#include "tests/clouds/CloudFiles.h"
#include "tests/support/ArrayCloud.h"

#include <algorithm>

namespace Zamt::Host {
namespace {

using Testing::numberAt;
using Testing::putNumber;
using Testing::readField;
using Testing::readFile;

/// Where the points of a file are, read without the code that is tested.
struct Places {
  explicit Places(const std::string& bytes)
      : start(numberAt<std::uint32_t>(bytes, 96)),
        length(numberAt<std::uint16_t>(bytes, 105)),
        isLong(bytes[25] == 4),
        points(isLong ? numberAt<std::uint64_t>(bytes, 247) : numberAt<std::uint32_t>(bytes, 107)) {}

  std::size_t end() const { return start + points * length; }

  std::size_t start;
  std::size_t length;
  bool isLong;
  std::uint64_t points;
};

/// All in front of the points, without what says how many they are and where they, and what follows, lie.
std::string headOf(const std::string& bytes, const Places& places) {
  std::string head = bytes.substr(0, places.start);
  std::fill_n(head.begin() + 107, 24, '\0');
  std::fill_n(head.begin() + 179, 48, '\0');
  if (bytes[25] >= 3) std::fill_n(head.begin() + 227, 8, '\0');
  if (places.isLong) std::fill_n(head.begin() + 235, 8, '\0');
  if (places.isLong) std::fill_n(head.begin() + 247, 128, '\0');
  return head;
}

class ExtractTest : public Testing::CloudFiles {
protected:
  std::shared_ptr<PointCloud> open(const std::string& file) {
    auto cloud = openCloud(file, error);
    EXPECT_TRUE(cloud) << error;
    return cloud;
  }

  /// Takes every `step`th point of a file out of it and compares what comes of that, byte by byte.
  void expectExtracted(const std::string& file, std::uint64_t step) {
    SCOPED_TRACE(file);
    const auto cloud = open(file);
    if (!cloud) return;
    PointMask kept(cloud->size());
    for (std::uint64_t i = 0; i < cloud->size(); i += step) kept.set(i);
    ASSERT_TRUE(cloud->extract(kept, path("out.las"), Testing::goOn, error)) << error;
    const std::string in = readFile(file);
    const std::string out = readFile(path("out.las"));
    const Places before(in);
    const Places after(out);
    EXPECT_EQ(after.points, kept.count());
    EXPECT_TRUE(headOf(out, after) == headOf(in, before));
    std::string records;
    for (std::uint64_t i = 0; i < before.points; i += step)
      records.append(in, before.start + i * before.length, before.length);
    EXPECT_TRUE(out.substr(after.start, after.end() - after.start) == records);
    EXPECT_TRUE(out.substr(after.end()) == in.substr(before.end()));
    expectHeader(out, after, in);
  }

  /// Compares the header with the points.
  void expectHeader(const std::string& out, const Places& places, const std::string& in) {
    const auto cloud = open(path("out.las"));
    if (!cloud) return;
    const bool legacy = out[104] < 6;
    EXPECT_EQ(numberAt<std::uint32_t>(out, 107), legacy ? places.points : 0);
    std::array<std::uint64_t, 16> returns{};
    for (const double number : readField(*cloud, "ReturnNumber")) ++returns[static_cast<std::size_t>(number)];
    for (std::size_t i = 1; i <= 5; ++i)
      EXPECT_EQ(numberAt<std::uint32_t>(out, 107 + 4 * i), legacy ? returns[i] : 0);
    for (std::size_t i = 1; places.isLong && i <= 15; ++i)
      EXPECT_EQ(numberAt<std::uint64_t>(out, 247 + 8 * i), returns[i]);
    const char* const axes[] = {"X", "Y", "Z"};
    for (std::size_t axis = 0; axis < 3 && places.points > 0; ++axis) {
      const std::vector<double> values = readField(*cloud, axes[axis]);
      EXPECT_EQ(numberAt<double>(out, 179 + 16 * axis), *std::ranges::max_element(values));
      EXPECT_EQ(numberAt<double>(out, 187 + 16 * axis), *std::ranges::min_element(values));
    }
    const bool hasMore = places.isLong && numberAt<std::uint32_t>(out, 243) > 0;
    const auto fromEnd = [](const std::string& bytes) {
      return bytes.size() - numberAt<std::uint64_t>(bytes, 235);
    };
    EXPECT_EQ(hasMore ? fromEnd(out) : 0, hasMore ? fromEnd(in) : 0);
  }

  std::string error;
};

TEST_F(ExtractTest, APartOfARealFileHasItsPointsItsRecordsAndAHeaderThatIsTrue) {
  REQUIRE_REAL_CLOUDS();
  for (const auto& entry : std::filesystem::directory_iterator(QUINDLE_TEST_DATA))
    if (entry.path().extension() == ".las" && entry.path().filename() != "garbage_nVariableLength.las")
      expectExtracted(entry.path(), 3); // that one lacks the last bytes of its points
}

TEST_F(ExtractTest, SeveralBlocksAllPointsAndNoneCanBeWrittenOntoTheInputItself) {
  NewCloud description;
  const auto fill = [](std::uint64_t i, NewPoint& point) {
    point.position = {static_cast<double>(i % 300), static_cast<double>(i), -1};
  };
  const std::uint64_t points = 2 * blockPoints + 5;
  ASSERT_TRUE(buildCloud(description, points, fill, path("in.las"), Testing::goOn, error)) << error;
  for (const std::uint64_t step : {std::uint64_t{1}, std::uint64_t{7}, points})
    expectExtracted(path("in.las"), step);
  for (int i = 0; i < 2; ++i) {
    const auto cloud = open(path("in.las"));
    ASSERT_TRUE(cloud->extract(PointMask(cloud->size()), path("in.las"), Testing::goOn, error)) << error;
    EXPECT_EQ(open(path("in.las"))->size(), 0U);
  }
}

TEST_F(ExtractTest, RecordsThatBeginInsideOfThePointsAreRefusedByAllThatWrites) {
  REQUIRE_REAL_CLOUDS();
  for (const std::string name : {"evlr_pf6.las", "laz/pf6_evlr.laz"}) {
    const std::string bytes = readFile(data(name));
    const auto whole = numberAt<std::uint64_t>(bytes, 235);
    for (const std::uint64_t start : {std::uint64_t{Places(bytes).start}, whole - 1}) {
      SCOPED_TRACE(name + " at " + std::to_string(start));
      std::string crafted = bytes;
      putNumber(crafted, 235, start);
      const auto cloud = open(write("in", crafted));
      const PointMask all(cloud->size(), true);
      Testing::setClasses(*cloud, 29, [](std::uint64_t point) { return point % 3 == 0; });
      const auto expectRefused = [&](bool done) {
        EXPECT_FALSE(done);
        EXPECT_EQ(error,
                  "The header of \"" + path("in") +
                      "\" says that records begin inside of the points. Write it anew with the program "
                      "it came from.");
      };
      if (name.ends_with(".las")) expectRefused(cloud->extract(all, path("out.las"), Testing::goOn, error));
      for (const char* out : {"out.las", "out.laz"})
        expectRefused(cloud->write({{29, "Kiosk"}}, path(out), Testing::goOn, error));
      EXPECT_EQ(names(), std::set<std::string>{"in"});
    }
  }
}

} // namespace
} // namespace Zamt::Host
