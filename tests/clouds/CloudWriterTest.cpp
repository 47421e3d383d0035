#include "files/AtomicFile.h"
#include "host/clouds/buildCloud.h"
#include "tests/clouds/CloudFiles.h"
#include "tests/support/ArrayCloud.h"
#include "tests/support/asNobody.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace Zamt::Host {
namespace {

using Testing::numberAt;
using Testing::putNumber;
using Testing::readFile;
using Names = std::set<std::string>;

/// Where the class of a point is, read without the code that is tested.
std::size_t classAt(const std::string& bytes, std::uint64_t point) {
  return numberAt<std::uint32_t>(bytes, 96) + point * numberAt<std::uint16_t>(bytes, 105) +
         (bytes[104] >= 6 ? 16 : 15);
}

class CloudWriterTest : public Testing::CloudFiles {
protected:
  /// "in.las", of three blocks unless told otherwise.
  std::string built(std::uint64_t points = 2 * blockPoints + 5, unsigned format = 3,
                    const std::vector<ClassName>& classNames = {}) {
    NewCloud description;
    description.pointFormat = format;
    description.classNames = classNames;
    const auto fill = [](std::uint64_t i, NewPoint& point) {
      point.position = {static_cast<double>(i % 300), static_cast<double>(i % 7), 1};
    };
    EXPECT_TRUE(buildCloud(description, points, fill, path("in.las"), Testing::goOn, error)) << error;
    return path("in.las");
  }

  static std::vector<std::string> realClouds() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(QUINDLE_TEST_DATA))
      if (entry.path().extension() == ".las" && entry.path().filename() != "garbage_nVariableLength.las")
        files.push_back(entry.path().string()); // that one lacks the last bytes of its points
    return files;
  }

  /// The bytes that come of writing a cloud.
  std::string written(const PointCloud& cloud, const std::vector<ClassName>& names) {
    EXPECT_TRUE(cloud.write(names, path("out.las"), Testing::goOn, error)) << error;
    return readFile(path("out.las"));
  }

  std::string refusal(const PointCloud& cloud, const std::vector<ClassName>& names, const std::string& out,
                      const Stop& stop = Testing::goOn) {
    EXPECT_FALSE(cloud.write(names, out, stop, error));
    return error;
  }

  std::string error;
};

TEST_F(CloudWriterTest, OnlyTheClassBitsOfChangedPointsDiffer) {
  REQUIRE_REAL_CLOUDS();
  std::vector<std::string> files = realClouds();
  files.push_back(built()); // beside the output, where a file system may let both share blocks
  for (const std::string& file : files) {
    SCOPED_TRACE(file);
    const auto cloud = openWell(file);
    if (!cloud) continue;
    std::string expected = readFile(file);
    EXPECT_TRUE(written(*cloud, {}) == expected);
    for (const std::uint64_t step : {5000U, 3U}) {
      Testing::setClasses(*cloud, 29, [step](std::uint64_t point) { return point % step == 0; });
      for (std::uint64_t point = 0; point < cloud->size(); point += step) {
        char& byte = expected[classAt(expected, point)];
        byte = static_cast<char>(expected[104] >= 6 ? 29 : (byte & 0xE0) | 29);
      }
      EXPECT_TRUE(written(*cloud, {}) == expected);
    }
  }
}

TEST_F(CloudWriterTest, ANewClassNameMovesThePointsAndChangesNothingElse) {
  REQUIRE_REAL_CLOUDS();
  constexpr std::size_t added = 54 + 256 * 16;
  for (const std::string& file : realClouds()) {
    SCOPED_TRACE(file);
    const auto cloud = openWell(file);
    if (!cloud) continue;
    const std::string before = readFile(file);
    std::string after = written(*cloud, {{29, "Kiosk"}});
    ASSERT_EQ(after.size(), before.size() + added);
    const auto again = openWell(path("out.las"));
    ASSERT_EQ(again->classNames().size(), 1U);
    EXPECT_EQ(again->classNames()[0].name, "Kiosk");
    EXPECT_EQ(Testing::countsOf(*again), Testing::countsOf(*cloud));
    if (before[25] == 4 && numberAt<std::uint32_t>(before, 243) != 0) {
      EXPECT_EQ(numberAt<std::uint64_t>(after, 235), numberAt<std::uint64_t>(before, 235) + added);
      after.replace(235, 8, before, 235, 8);
    }
    if (before[25] >= 3) {
      const auto packets = numberAt<std::uint64_t>(before, 227); // where those of waveforms start; 0 for none
      EXPECT_EQ(numberAt<std::uint64_t>(after, 227), packets == 0 ? 0 : packets + added);
      after.replace(227, 8, before, 227, 8);
    }
    EXPECT_EQ(numberAt<std::uint32_t>(after, 96), numberAt<std::uint32_t>(before, 96) + added);
    after.replace(96, 8, before, 96, 8); // start of the points and number of records
    EXPECT_TRUE(after.erase(after.find("Kiosk") - 1 - 54, added) == before);
  }
}

TEST_F(CloudWriterTest, NamesGoIntoTheRecordThatIsThere) {
  const std::string before = readFile(built(5, 6, {{2, "Soil"}, {40, "Old"}}));
  const auto after = written(*openWell(path("in.las")), {{40, "New"}, {0, "Zero"}, {41, "Exactly 15 byte"}});
  EXPECT_EQ(after.size(), before.size());
  const auto named = openWell(path("out.las"));
  std::string read;
  for (const ClassName& entry : named->classNames()) read += std::to_string(entry.number) + entry.name + ";";
  EXPECT_EQ(read, "0Zero;2Soil;40New;41Exactly 15 byte;");

  // The same record cut down to its two entries, so that it must grow.
  std::string small = before;
  small.erase(375 + 54 + 32, std::size_t{254} * 16);
  putNumber(small, 375 + 20, std::uint16_t{32});
  putNumber(small, 96, std::uint32_t{375 + 54 + 32});
  EXPECT_EQ(written(*openWell(write("small.las", small)), {{41, "Grown"}}).size(), before.size());
  EXPECT_EQ(openWell(path("out.las"))->classNames().size(), 3U);
  EXPECT_EQ(openWell(path("out.las"))->size(), 5U);
}

TEST_F(CloudWriterTest, WhatCannotBeWrittenEndsInASentenceAndLeavesTheOldFile) {
  const auto cloud = openWell(built(5));
  write("out.las", "old");
  EXPECT_EQ(refusal(*cloud, {{5, "Sixteen bytes :-"}}, path("out.las")),
            "The class name \"Sixteen bytes :-\" is too long for a LAS file, which holds 15 bytes. Choose a "
            "shorter one.");
  EXPECT_EQ(refusal(*cloud, {{32, "Kiosk"}}, path("out.las")),
            "The points of \"" + path("in.las") +
                "\" can't hold the class 32, the highest is 31. Choose a lower number.");
  EXPECT_EQ(refusal(*cloud, {}, path("none/out.las")),
            "The directory \"" + path("none") + "\" does not exist. Create it first or write elsewhere.");
  EXPECT_EQ(refusal(*cloud, {}, path()), "\"" + path() + "\" is a directory. Name a file in it instead.");
  Stop stop;
  stop.request();
  EXPECT_EQ(refusal(*cloud, {}, path("out.las"), stop), stoppedMessage);
  EXPECT_EQ(readFile(path("out.las")), "old");
  EXPECT_EQ(names(), (Names{"in.las", "out.las"}));
}

TEST_F(CloudWriterTest, WritingOntoTheInputIsSafeAndKeepsPermissionsAndLinks) {
  const std::string file = built();
  ::chmod(file.c_str(), 0640);
  std::filesystem::create_symlink("in.las", path("link.las"));
  const auto cloud = openWell(file);
  Testing::setClasses(*cloud, 6, [](std::uint64_t point) { return point % blockPoints == 0; });
  EXPECT_TRUE(cloud->write({{6, "House"}}, path("link.las"), Testing::goOn, error)) << error;
  EXPECT_EQ(Testing::positionsOf(*cloud)[1][0], 1); // the old file's bytes remain mapped
  EXPECT_TRUE(std::filesystem::is_symlink(path("link.las")));
  EXPECT_EQ(Testing::countsOf(*openWell(file))[6], 3U);
  struct stat status {};
  ASSERT_EQ(::stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
  EXPECT_EQ(names(), (Names{"in.las", "link.las"}));
}

TEST_F(CloudWriterTest, AFileThatMayNotGrowSoLargeEndsInASentence) {
  const std::string file = built();
  ASSERT_TRUE(openWell(file)->write({}, path("in.laz"), Testing::goOn, error)) << error;
  const std::pair<std::string, std::string> writings[] = {
      {"in.las", "out.las"}, {"in.las", "out.laz"}, {"in.laz", "out.laz"}, {"in.laz", "in.laz"}};
  const std::string before = Testing::readFile(path("in.laz"));
  for (const auto& [from, to] : writings) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      const rlimit limit{4096, 4096};
      ::setrlimit(RLIMIT_FSIZE, &limit);
      const auto cloud = openCloud(path(from), error);
      Testing::setClasses(*cloud, 6, [](std::uint64_t) { return true; });
      const bool refused = cloud && !cloud->write({}, path(to), Testing::goOn, error);
      ::_exit(refused &&
                      error ==
                          "\"" + path(to) +
                              "\" would be larger than files may be here. Raise the limit or write elsewhere."
                  ? 0
                  : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << from << " " << to;
  }
  EXPECT_EQ(names(), (Names{"in.las", "in.laz"}));
  EXPECT_TRUE(Testing::readFile(path("in.laz")) == before);
}

TEST_F(CloudWriterTest, AFileThatNoOtherMayReplaceIsRefusedWithAnotherWay) {
  using Perms = std::filesystem::perms;
  constexpr Perms everybodys = Perms::owner_all | Perms::group_all | Perms::others_all;
  const std::string file = built(5);
  const std::string before = readFile(file);
  std::filesystem::permissions(file, everybodys);
  constexpr Perms readOnly = everybodys & ~(Perms::owner_write | Perms::group_write | Perms::others_write);
  for (const Perms of : {readOnly, everybodys | Perms::sticky_bit}) {
    std::filesystem::permissions(path(), of);
    EXPECT_TRUE(Testing::asNobody([&] {
      return refusal(*openWell(file), {}, file) == "The directory \"" + path() +
                                                       "\" lets no other file take the place of \"" + file +
                                                       "\". Write to another directory with -o.";
    }));
  }
  std::filesystem::permissions(path(), everybodys);
  EXPECT_EQ(readFile(file), before);
  EXPECT_EQ(names(), Names{"in.las"});
}

TEST_F(CloudWriterTest, ASignalHandlerCanRemoveWhatIsNotComplete) {
  const auto file = AtomicFile::create(path("out.las"), error);
  ASSERT_TRUE(file) << error;
  EXPECT_EQ(names().size(), 1U);
  removeTemporaries();
  EXPECT_TRUE(names().empty());
  EXPECT_FALSE(file->commit(error));
}

} // namespace
} // namespace Zamt::Host
