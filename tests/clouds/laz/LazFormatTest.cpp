#include "host/clouds/las/LasCompatibility.h"
#include "host/clouds/laz/LazChunks.h"
#include "tests/support/goldenCases.h"

#include <cstring>

namespace Zamt::Host {
namespace {

using Bytes = std::vector<std::byte>;

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

TEST(LazFormatTest, RecordsThatContradictThemselvesAreRefusedAsInTheGoldenDocument) {
  LazFormat read;
  std::string error;
  Testing::expectCases("clouds/laz/golden/records.md", [&](const std::string& change) {
    unsigned pointFormat = 0;
    std::size_t at = 0;
    std::uint16_t value = 0;
    std::istringstream(change) >> pointFormat >> at >> value;
    const LazFormat format = newLazFormat(pointFormat, newLazFormat(pointFormat, 0).recordLength + 2);
    Bytes record = lazRecordOf(format);
    std::memcpy(&record[at], &value, sizeof value);
    EXPECT_FALSE(readLazFormat(record, pointFormat, format.recordLength, "a.laz", read, error));
    return error;
  });
  EXPECT_FALSE(readLazFormat({}, 6, 30, "a.laz", read, error));
  EXPECT_EQ(error, "The LAZ record of \"a.laz\" is damaged: it has 0 bytes, fewer than any has. Fetch the "
                   "file again, or have the program that wrote it write it again.");
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
