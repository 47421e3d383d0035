#include "tests/clouds/CloudFiles.h"
#include "tests/laz-judge/noticedFiles.h"
#include "tests/laz-judge/verdicts.h"
#include "tests/support/goldenCases.h"
#include "tests/support/readCloud.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Zamt::Testing {
namespace {

using ::testing::HasSubstr;

const std::string folder = std::string(QUINDLE_TEST_DATA) + "/laz";
constexpr std::uint8_t newClass = 29;

using Chosen = std::function<bool(std::uint64_t)>;

class LazCloudTest : public CloudFiles {
protected:
  void SetUp() override {
    if (files.empty()) GTEST_SKIP() << "No compressed clouds at " << folder << ".";
  }

  /// The bytes that come of putting some points of a file into the new class.
  std::string edited(const std::string& file, const Chosen& chosen,
                     const std::vector<Host::ClassName>& names = {}, const std::string& out = "out.laz") {
    const auto cloud = openWell(file);
    if (!cloud) return {};
    setClasses(*cloud, newClass, chosen);
    EXPECT_TRUE(cloud->write(names, path(out), goOn, error)) << error;
    return readFile(path(out));
  }

  const std::map<std::string, NoticedFile> files = noticedFiles(folder);
  std::string error;
};

bool isCompatible(const Laz::LazFile& file) {
  return std::ranges::any_of(
      file.records, [](const Laz::LasRecord& record) { return record.userId.starts_with("lascompatible"); });
}

/// The records of all points with the chosen ones in the new class.
std::string expectedPoints(const Laz::LazFile& file, const Chosen& chosen) {
  constexpr std::size_t secondClass = 28 + 3; // of the compatible files that there are
  std::string points = file.points;
  for (std::uint64_t i = 0; i < file.count(); ++i) {
    if (!chosen(i)) continue;
    char* const record = &points[i * file.recordLength];
    if (file.layered()) {
      record[16] = newClass;
      continue;
    }
    record[15] = static_cast<char>((record[15] & 0xE0) | newClass);
    if (isCompatible(file) && record[secondClass] != 0) record[secondClass] = newClass;
  }
  return points;
}

/// The bytes before the points without those that say where things behind the points are.
std::string frontWithoutPlaces(const Laz::LazFile& file) {
  std::string front = file.front;
  const auto blank = [&](std::size_t at, std::size_t size) { front.replace(at, size, size, '\0'); };
  if (front[25] >= 3) blank(227, 8);
  if (front[25] >= 4) blank(235, 12);
  for (const Laz::LasRecord& record : file.records) {
    if (record.userId.starts_with("laszip encoded")) blank(record.payloadAt + 24, 8);
    if (record.userId == "copc" && record.id == 1) blank(record.payloadAt + 40, 8);
  }
  return front;
}

TEST_F(LazCloudTest, OfEveryFileOnlyTheClassesOfChangedPointsDiffer) {
  const std::pair<std::string, Chosen> edits[] = {
      {"some", [](std::uint64_t i) { return i % 7 == 3; }},
      {"one", [](std::uint64_t i) { return i == 0; }},
      {"all", [](std::uint64_t) { return true; }},
  };
  for (const auto& [name, file] : files) {
    if (file.sum.empty()) continue;
    const std::string input = readFile(file.path);
    const Laz::LazFile before = Laz::decodeLaz(input);
    SCOPED_TRACE(name);
    EXPECT_TRUE(edited(file.path, [](std::uint64_t) { return false; }) == input);
    for (const auto& [which, chosen] : edits) {
      SCOPED_TRACE(which);
      const std::string output = edited(file.path, chosen);
      if (before.count() == 0) continue;
      const Laz::LazFile after = Laz::decodeLaz(output);
      EXPECT_TRUE(after.points == expectedPoints(before, chosen));
      EXPECT_TRUE(after.tableUsed);
      EXPECT_FALSE(after.streamed);
      EXPECT_TRUE(frontWithoutPlaces(after) == frontWithoutPlaces(before));
      if (before.tableUsed && !name.starts_with("copc")) {
        EXPECT_TRUE(after.back == before.back);
      }
    }
  }
}

TEST_F(LazCloudTest, EveryFieldOfEveryFileReadsAsItDoesInLas) {
  for (const auto& [name, file] : files) {
    if (file.sum.empty()) continue;
    SCOPED_TRACE(name);
    const Laz::LazFile decoded = Laz::decodeLaz(readFile(file.path));
    std::string las = decoded.front + decoded.points;
    las[104] = static_cast<char>(decoded.format);
    for (const Laz::LasRecord& record : decoded.records)
      if (record.userId.starts_with("laszip encoded")) las[record.payloadAt] = '\0';
    if (las[25] >= 4) las.replace(243, 4, 4, '\0'); // no records behind the points
    const auto plain = openWell(write("plain.las", las));
    const auto compressed = openWell(file.path);
    ASSERT_EQ(plain->size(), compressed->size());
    ASSERT_EQ(plain->fields().size(), compressed->fields().size());
    EXPECT_EQ(plain->highestClass(), compressed->highestClass());
    for (const Host::Field& field : plain->fields())
      for (unsigned component = 0; component < field.components; ++component) {
        const auto expected = readField(*plain, field.name, component);
        const auto found = readField(*compressed, field.name, component);
        EXPECT_TRUE(expected.empty() ||
                    std::memcmp(expected.data(), found.data(), expected.size() * sizeof(double)) == 0)
            << field.name; // the bits, since there are values that are no numbers
      }
  }
}

TEST_F(LazCloudTest, WhatCannotBeDecodedEndsInTheSentenceOfTheGoldenDocument) {
  auto left = std::ranges::count_if(files, [](const auto& each) { return each.second.sum.empty(); });
  expectCases("clouds/laz/golden/refused.md", [&](const std::string& name) {
    const NoticedFile& file = files.at(name);
    const auto cloud = Host::openCloud(file.path, error);
    Host::ClassCounts counts;
    EXPECT_FALSE(cloud && Host::countClasses(*cloud, goOn, counts, error));
    if (file.sum.empty()) --left;
    return error.replace(error.find(file.path), file.path.size(), name);
  });
  EXPECT_EQ(left, 0) << "files that are to be refused and are not in the document";
  EXPECT_TRUE(names().empty());
}

TEST_F(LazCloudTest, AWrongNumberOfPointsEndsInASentenceAndAWrongPlaceOfTheTableIsDoneWithout) {
  const std::string sound = readFile(files.at("pf6.laz").path);
  const auto start = numberAt<std::uint32_t>(sound, 96);
  const auto said = [&](std::size_t at, std::uint64_t value) -> std::string {
    std::string bytes = sound;
    putNumber(bytes, at, value);
    const auto cloud = Host::openCloud(write("a.laz", bytes), error);
    Host::ClassCounts counts{};
    if (cloud && Host::countClasses(*cloud, goOn, counts, error)) return std::to_string(cloud->size());
    return error.substr(0, error.find(". Fetch"));
  };
  const std::string file = "\"" + path("a.laz") + "\"";
  const std::string cannot = "The points of " + file + " can't be read: its ";
  const std::string last = "Chunk 2 of " + file + ", at byte 123332, is damaged: it says 5408 points, where ";
  EXPECT_EQ(said(247, 0), cannot + "header says that it has no points, but its chunk table tells of some");
  EXPECT_EQ(said(247, 25407), last + "5407 are expected");
  EXPECT_EQ(said(247, 25409), last + "5409 are expected");
  for (const unsigned bits : {40U, 63U})
    EXPECT_EQ(said(247, std::uint64_t{1} << bits),
              cannot + "chunk table is damaged, and in chunk 2, at byte 123332, there are 5408 points, where "
                       "10000 are expected");
  for (const std::uint64_t place : {std::uint64_t{0}, std::uint64_t{start}, std::uint64_t{start} + 8,
                                    sound.size() - 8, sound.size() - 7, ~std::uint64_t{0}, ~std::uint64_t{7}})
    EXPECT_EQ(said(start, place), "25408") << place;
}

TEST_F(LazCloudTest, ANewClassNameMovesAllPlacesWithIt) {
  for (const auto& [name, file] : files) {
    if (file.sum.empty()) continue;
    SCOPED_TRACE(name);
    const Laz::LazFile before = Laz::decodeLaz(readFile(file.path));
    const std::string output =
        edited(file.path, [](std::uint64_t i) { return i % 5 == 0; }, {{newClass, "Kiosk"}});
    const Laz::LazFile after = Laz::decodeLaz(output);
    EXPECT_TRUE(after.points == expectedPoints(before, [](std::uint64_t i) { return i % 5 == 0; }));
    const auto again = openWell(path("out.laz"));
    ASSERT_FALSE(again->classNames().empty());
    EXPECT_EQ(again->classNames().back().name, "Kiosk");
    EXPECT_EQ(after.records[0].userId, before.records[0].userId);
    if (!before.tableUsed || output[25] < 4) continue;
    const auto from = numberAt<std::uint64_t>(before.front, 235);
    if (from >= before.backAt) {
      EXPECT_EQ(numberAt<std::uint64_t>(after.front, 235) - after.backAt, from - before.backAt);
    }
  }
}

std::size_t lengthAt(const std::string& bytes, std::size_t record, std::size_t head) {
  return head == 54 ? numberAt<std::uint16_t>(bytes, record + 20)
                    : static_cast<std::size_t>(numberAt<std::uint64_t>(bytes, record + 20));
}

/// The user ids and ids of all records, but for the one of the compressor and those of COPC.
std::string recordsOf(const std::string& bytes) {
  std::string all;
  std::size_t at = numberAt<std::uint16_t>(bytes, 94);
  const auto add = [&](std::size_t head) {
    const std::string record = bytes.substr(at, 20) + bytes.substr(at + head, lengthAt(bytes, at, head));
    if (record.compare(2, 14, "laszip encoded") != 0 && record.compare(2, 5, std::string("copc", 5)) != 0)
      all += record;
    at += head + lengthAt(bytes, at, head);
  };
  for (std::uint32_t i = 0; i < numberAt<std::uint32_t>(bytes, 100); ++i) add(54);
  if (bytes[25] < 4) return all;
  at = numberAt<std::uint64_t>(bytes, 235);
  for (std::uint32_t i = 0; i < numberAt<std::uint32_t>(bytes, 243); ++i) add(60);
  return all;
}

TEST_F(LazCloudTest, ConvertedFilesKeepTheirPointsAndRecords) {
  const auto third = [](std::uint64_t i) { return i % 3 == 0; };
  for (const auto& [name, file] : files) {
    if (file.sum.empty()) continue;
    SCOPED_TRACE(name);
    const std::string input = readFile(file.path);
    const Laz::LazFile before = Laz::decodeLaz(input);
    const std::string points = expectedPoints(before, third);
    const std::string las = edited(file.path, third, {}, "out.las");
    EXPECT_EQ(las[104], static_cast<char>(before.format));
    EXPECT_TRUE(las.substr(numberAt<std::uint32_t>(las, 96), points.size()) == points);
    const std::string laz = edited(path("out.las"), third, {}, "back.LAZ");
    const Laz::LazFile again = Laz::decodeLaz(laz);
    EXPECT_TRUE(again.points == points);
    EXPECT_TRUE(again.tableUsed);
    if (before.tableUsed) {
      EXPECT_TRUE(recordsOf(las) == recordsOf(input));
      EXPECT_TRUE(recordsOf(laz) == recordsOf(input));
    }
    // what only compression needs comes and goes without a trace
    EXPECT_TRUE(edited(path("back.LAZ"), third, {}, "again.las") == las);
  }
}

/// Compares what a header says of the points with them.
void expectTrueHeader(const std::string& bytes, const std::string& points) {
  const bool isLong = (bytes[104] & 0x3F) >= 6;
  const std::size_t length = numberAt<std::uint16_t>(bytes, 105);
  std::array<std::uint64_t, 16> counts{points.size() / length};
  std::array<std::int32_t, 6> ends{};
  for (std::size_t at = 0; at < points.size(); at += length) {
    const int number = points[at + 14] & (isLong ? 15 : 7);
    if (number != 0) ++counts[static_cast<std::size_t>(number)];
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const auto place = numberAt<std::int32_t>(points, at + 4 * axis);
      ends[2 * axis] = at == 0 ? place : std::max(ends[2 * axis], place);
      ends[2 * axis + 1] = at == 0 ? place : std::min(ends[2 * axis + 1], place);
    }
  }
  for (std::size_t i = 0; i < 6; ++i)
    EXPECT_EQ(numberAt<std::uint32_t>(bytes, 107 + 4 * i), isLong ? 0 : counts[i]);
  for (std::size_t i = 0; bytes[25] >= 4 && i < 16; ++i)
    EXPECT_EQ(numberAt<std::uint64_t>(bytes, 247 + 8 * i), counts[i]);
  for (std::size_t i = 0; i < 6; ++i)
    EXPECT_EQ(numberAt<double>(bytes, 179 + 8 * i), points.empty()
                                                        ? 0
                                                        : ends[i] * numberAt<double>(bytes, 131 + i / 2 * 8) +
                                                              numberAt<double>(bytes, 155 + i / 2 * 8));
}

TEST_F(LazCloudTest, ExtractedPartsHaveTheirPointsAllRecordsAndAHeaderThatIsTrue) {
  for (const auto& [name, file] : files) {
    if (file.sum.empty()) continue;
    const std::string input = readFile(file.path);
    const Laz::LazFile before = Laz::decodeLaz(input);
    for (const std::uint64_t step : {1U, 3U, 1000000U}) { // the last one keeps the first point
      SCOPED_TRACE(name + " " + std::to_string(step));
      const auto cloud = openWell(file.path);
      Host::PointMask kept(cloud->size());
      std::string points;
      for (std::uint64_t i = 0; i < cloud->size(); i += step) {
        kept.set(i);
        points.append(before.points, i * before.recordLength, before.recordLength);
      }
      EXPECT_TRUE(cloud->extract(kept, path("out.laz"), goOn, error)) << error;
      EXPECT_TRUE(cloud->extract(kept, path("out.las"), goOn, error)) << error;
      const auto las = openWell(path("out.las"));
      EXPECT_TRUE(las->extract(Host::PointMask(las->size(), true), path("again.laz"), goOn, error)) << error;
      for (const char* made : {"out.laz", "again.laz"}) {
        const std::string bytes = readFile(path(made));
        EXPECT_TRUE(Laz::decodeLaz(bytes).points == points) << made;
        if (before.tableUsed) {
          EXPECT_TRUE(isCompatible(before) || recordsOf(bytes) == recordsOf(input)) << made;
        }
        expectTrueHeader(bytes, points);
      }
      const std::string plain = readFile(path("out.las"));
      EXPECT_TRUE(plain.substr(numberAt<std::uint32_t>(plain, 96), points.size()) == points);
      expectTrueHeader(plain, points);
      if (isCompatible(before)) {
        EXPECT_EQ(numberAt<std::uint64_t>(plain, plain.find("lascompatible") - 2 + 54 + 28), kept.count());
      }
    }
  }
}

TEST_F(LazCloudTest, AnExtractedPartOfACopcFileKeepsItsTree) {
  for (const std::string name : {"copc_pf7.copc.laz", "copc_pf7_pages.copc.laz", "copc_pf7_big.copc.laz"}) {
    SCOPED_TRACE(name);
    const auto cloud = openWell(files.at(name).path);
    const std::vector<double> times = readField(*cloud, "GpsTime");
    Host::PointMask kept(cloud->size()); // all of the first half and nothing of the rest
    for (std::uint64_t i = 0; i < cloud->size() / 2; ++i) kept.set(i);
    ASSERT_TRUE(cloud->extract(kept, path(name), goOn, error)) << error;
    const auto smaller = openWell(path(name));
    EXPECT_EQ(smaller->size(), kept.count());
    EXPECT_LT(smaller->blocks().size(), cloud->blocks().size());
    const std::string bytes = readFile(path(name));
    const auto [low, high] =
        std::minmax_element(times.begin(), times.begin() + static_cast<int>(kept.count()));
    EXPECT_EQ(numberAt<double>(bytes, 429 + 56), *low);
    EXPECT_EQ(numberAt<double>(bytes, 429 + 64), *high);
    EXPECT_EQ(npmVerdict(path(name)), plainVerdict(bytes));
    EXPECT_FALSE(openWell(files.at("pf6.laz").path)->extract(kept, path("b.copc.laz"), goOn, error));
    EXPECT_TRUE(error.ends_with("Let the name end in .laz instead.")) << error;
  }
}

TEST_F(LazCloudTest, OnlyACopcFileIsWrittenAsOne) {
  const auto none = [](std::uint64_t) { return false; };
  const std::string copc = files.at("copc_pf7.copc.laz").path;
  EXPECT_TRUE(edited(copc, none, {}, "a.copc.laz") == readFile(copc));
  EXPECT_TRUE(edited(copc, none, {}, "a.laz") == readFile(copc));
  edited(copc, none, {}, "a.las");
  for (const std::string& other : {path("a.las"), files.at("pf7_variable.laz").path}) {
    EXPECT_FALSE(openWell(other)->write({}, path("b.copc.laz"), goOn, error));
    EXPECT_EQ(error, "\"" + path("b.copc.laz") + "\" can't be written from \"" + other +
                         "\", whose points are not sorted into the tree of a COPC file. Let the name end in "
                         ".laz instead.");
  }
  EXPECT_EQ(names(), (std::set<std::string>{"a.copc.laz", "a.las", "a.laz"}));
}

TEST_F(LazCloudTest, ADamagedTreeIsRefused) {
  const std::string sound = readFile(files.at("copc_pf7_pages.copc.laz").path);
  const auto page = numberAt<std::uint64_t>(sound, 429 + 40);
  std::size_t link = page; // the entry of the other page
  while (numberAt<std::int32_t>(sound, link + 28) != -1) link += 32;
  const std::string start = "The COPC index of \"" + path("bad.laz") + "\" is damaged: ";
  const std::string entry = "the entry at byte " + std::to_string(page) + " ";
  const auto whyNot = [&](std::size_t at, auto value) {
    std::string bytes = sound;
    putNumber(bytes, at, value);
    EXPECT_FALSE(Host::openCloud(write("bad.laz", bytes), error));
    EXPECT_THAT(error, ::testing::StartsWith(start));
    return error.substr(start.size(), error.find(". Fetch") - start.size());
  };
  const std::string at = "the page at byte " + std::to_string(page);
  EXPECT_EQ(whyNot(429 + 40, sound.size()),
            "the page at byte " + std::to_string(sound.size()) + " does not lie within the hierarchy");
  EXPECT_EQ(whyNot(429 + 48, std::uint64_t{33}), at + " does not lie within the hierarchy");
  EXPECT_EQ(whyNot(429 + 24, std::nan("")), "its cube is none");
  EXPECT_EQ(whyNot(page, 31), entry + "is of no level that can be");
  EXPECT_EQ(whyNot(page + 4, 1), entry + "is of no node of its level");
  EXPECT_EQ(whyNot(page + 16, std::uint64_t{7}), entry + "tells of no chunk");
  EXPECT_EQ(whyNot(page + 24, 7), entry + "contradicts its chunk");
  EXPECT_THAT(whyNot(page + 28, 0), HasSubstr("it tells of 64 of 65 chunks"));
  EXPECT_THAT(whyNot(link + 16, page), HasSubstr("tells of a chunk that another one tells of"));
}

TEST_F(LazCloudTest, BoxesOfATreeHoldItsPoints) {
  for (const std::string name : {"copc_pf7.copc.laz", "copc_pf7_big.copc.laz", "copc_pf7_small.copc.laz"}) {
    const auto cloud = openWell(files.at(name).path);
    const auto positions = positionsOf(*cloud);
    Host::BlockReader reader(*cloud);
    for (std::size_t block = 0; block < cloud->blocks().size(); ++block) {
      reader.moveTo(block);
      const Host::Bounds box = reader.bounds();
      for (std::size_t i = 0; i < reader.size(); ++i)
        for (std::size_t axis = 0; axis < 3; ++axis) {
          const double value = positions[reader.first() + i][axis];
          ASSERT_TRUE(box.low[axis] <= value && value <= box.high[axis]) << name << " block " << block;
        }
    }
  }
}

TEST_F(LazCloudTest, OtherReadersAgreeOnWhatIsWritten) {
  for (const std::string name :
       {"pf1.laz", "pf3_chunks.laz", "pf6_evlr.laz", "pf7_variable.laz", "pf8_extra3.laz",
        "copc_pf7.copc.laz", "copc_pf7_pages.copc.laz", "copc_pf7_big.copc.laz"}) {
    SCOPED_TRACE(name);
    const auto third = [](std::uint64_t i) { return i % 3 == 0; };
    const std::string output = edited(files.at(name).path, third, {{newClass, "Kiosk"}}, "out." + name);
    EXPECT_EQ(npmVerdict(path("out." + name)), plainVerdict(output));
  }
}

} // namespace
} // namespace Zamt::Testing
