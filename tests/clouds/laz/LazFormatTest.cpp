#include "host/clouds/las/LasCompatibility.h"
#include "host/clouds/laz/LazChunks.h"

#include <cstring>
#include <gtest/gtest.h>

namespace Zamt::Host {
namespace {

using Bytes = std::vector<std::byte>;

void put(Bytes& bytes, std::size_t at, std::uint16_t value) { std::memcpy(&bytes[at], &value, sizeof value); }

TEST(LazFormatTest, RecordsOfNewFormatsReadAsWhatTheySay) {
  for (unsigned pointFormat = 0; pointFormat <= 10; ++pointFormat)
    for (const std::size_t extra : {0U, 1U, 200U}) {
      const std::size_t length = newLazFormat(pointFormat, 0).recordLength + extra;
      const LazFormat format = newLazFormat(pointFormat, length, pointFormat * 1000);
      LazFormat read;
      std::string error;
      ASSERT_TRUE(readLazFormat(lazRecordOf(format), pointFormat, length, "a.laz", read, error)) << error;
      EXPECT_EQ(lazRecordOf(read), lazRecordOf(format));
      EXPECT_EQ(read.isVariable(), pointFormat == 0);
      std::size_t covered = 0;
      for (const LazPart& part : read.parts) {
        EXPECT_EQ(part.offset, covered);
        covered += part.size;
      }
      EXPECT_EQ(covered, length);
    }
}

TEST(LazFormatTest, RecordsThatContradictThemselvesAreRefused) {
  struct Case {
    unsigned pointFormat;
    std::size_t at; ///< What is changed in the record of a file with that format and two extra bytes,
    std::uint16_t value;
    std::string sentence; ///< and what is said of it.
  };
  const std::string damaged = "The LAZ record of \"a.laz\" is damaged: ";
  const std::string again = ". Fetch the file again, or have the program that wrote it write it again.";
  const std::string unknown =
      ", which can't be read. Convert it to LAS 1.4, or to LAZ with another tool, first.";
  const std::string is = "\"a.laz\" is compressed with ";
  const std::vector<Case> cases{
      {6, 0, 2, damaged + "compressor 2 does not code points of format 6" + again},
      {1, 0, 3, damaged + "compressor 3 does not code points of format 1" + again},
      {6, 0, 4, is + "compressor 4" + unknown},
      {6, 2, 1, is + "coder 1" + unknown},
      {6, 32, 3, damaged + "it says 3 items, but has 46 bytes" + again},
      {6, 34, 5, is + "items of type 5" + unknown},
      {6, 36, 31, damaged + "its items take 33 bytes, but a point has 32" + again},
      {6, 38, 1, is + "version 1 of items of type 10" + unknown},
      {6, 38, 5, is + "version 5 of items of type 10" + unknown},
      {6, 40, 0, is + "version 3 of items of type 0" + unknown},
      {7, 40, 12, damaged + "its items are not those of point format 7" + again},
      {1, 44, 1,
       "\"a.laz\" was written by a LAZ compressor of 2010 or 2011 (LAZ 1.x), which can't be read. Convert it "
       "with a current LAZ tool first."},
  };
  for (const Case& each : cases) {
    const LazFormat format =
        newLazFormat(each.pointFormat, newLazFormat(each.pointFormat, 0).recordLength + 2);
    Bytes record = lazRecordOf(format);
    put(record, each.at, each.value);
    LazFormat read;
    std::string error;
    EXPECT_FALSE(readLazFormat(record, each.pointFormat, format.recordLength, "a.laz", read, error));
    EXPECT_EQ(error, each.sentence);
  }
  LazFormat read;
  std::string error;
  EXPECT_FALSE(readLazFormat({}, 6, 30, "a.laz", read, error));
  EXPECT_EQ(error, damaged + "it has 0 bytes, fewer than any has" + again);
}

TEST(LazFormatTest, ChunkTablesAreTheBytesThatTheFormatSays) {
  const auto streamOf = [](std::uint32_t chunkSize, const std::vector<LazChunk>& chunks) {
    Bytes table = lazChunkTable(newLazFormat(6, 0, chunkSize), chunks);
    return Bytes(table.begin() + 8, table.end());
  };
  const auto bytes = [](std::initializer_list<unsigned> values) {
    Bytes all;
    for (const unsigned value : values) all.push_back(static_cast<std::byte>(value));
    return all;
  };
  EXPECT_EQ(streamOf(50, {{0, 50, 0, 9633}}), bytes({0x71, 0x29, 0x0c, 0, 0, 0}));
  EXPECT_EQ(streamOf(50, {{0, 50, 0, 1000}, {0, 50, 0, 700}, {0, 50, 0, 2000000}}),
            bytes({0x55, 0x23, 0x6d, 0x50, 0x96, 0xd7, 0xea, 0x02, 0, 0}));
  EXPECT_EQ(streamOf(0, {{0, 100, 0, 1000}, {0, 50, 0, 700}}),
            bytes({0x3c, 0x50, 0xb6, 0x85, 0x45, 0x06, 0xd4, 0, 0, 0}));
}

TEST(LazFormatTest, CompatiblePointsSayTheirClassInBothPlacesThatAreRead) {
  struct Case {
    std::uint8_t flags, second; ///< The two bytes before,
    std::uint8_t newClass;
    std::uint8_t flagsAfter, secondAfter;
  };
  for (const auto& [flags, second, newClass, flagsAfter, secondAfter] :
       {Case{0x22, 0, 5, 0x25, 0}, Case{0x22, 2, 5, 0x25, 5}, Case{0x22, 0, 40, 0x20, 40},
        Case{0x20, 40, 31, 0x3F, 31}, Case{0x20, 40, 0, 0x20, 0}}) {
    Bytes record(21);
    record[15] = std::byte{flags};
    record[20] = std::byte{second};
    setPointwiseClass(record.data(), 20, newClass);
    EXPECT_EQ(record[15], std::byte{flagsAfter});
    EXPECT_EQ(record[20], std::byte{secondAfter});
    EXPECT_EQ(compatibleClass(flagsAfter, secondAfter), newClass);
  }
}

TEST(LazFormatTest, CompatiblePointsAreFoundByTheNamesOfTheirExtraBytes) {
  Bytes record;
  const auto add = [&record](const char* name, unsigned type) {
    Bytes entry(192);
    entry[2] = static_cast<std::byte>(type);
    std::memcpy(&entry[4], name, std::strlen(name));
    record.insert(record.end(), entry.begin(), entry.end());
  };
  add("amplitude", 9);
  add("LAS 1.4 scan angle", 4);
  add("LAS 1.4 extended returns", 1);
  add("LAS 1.4 classification", 1);
  EXPECT_FALSE(findCompatibility(record, 1, 37));
  add("LAS 1.4 flags and channel", 1);
  const auto found = findCompatibility(record, 1, 37);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->classAt, 35U);
  EXPECT_FALSE(found->infraredAt);
  EXPECT_FALSE(findCompatibility(record, 1, 36)) << "one byte too short";
  EXPECT_FALSE(findCompatibility(record, 6, 60));
  add("LAS 1.4 NIR band", 3);
  EXPECT_EQ(findCompatibility(record, 3, 45)->infraredAt, 43U);
}

} // namespace
} // namespace Zamt::Host
