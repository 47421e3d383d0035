#include "host/clouds/laz/LazClassEncoder.h"
#include "host/clouds/laz/LazEncoder.h"
#include "tests/clouds/laz/LazFile.h"
#include "tests/laz-judge/noticedFiles.h"
#include "tests/support/realClouds.h"

#include <gtest/gtest.h>

namespace Zamt::Testing {
namespace {

const std::string folder = std::string(QUINDLE_TEST_DATA) + "/laz";

class LazFilesTest : public ::testing::Test {
protected:
  void SetUp() override { REQUIRE_REAL_CLOUDS(); }
};

/// The classes that all points of a chunk have.
std::vector<std::uint8_t> classesOf(const LazFile& file, const Bytes& records) {
  std::vector<std::uint8_t> classes;
  const bool layered = file.format.isLayered();
  for (std::size_t at = layered ? 16 : 15; at < records.size(); at += file.format.recordLength)
    classes.push_back(std::to_integer<std::uint8_t>(records[at] & std::byte(layered ? 0xFF : 0x1F)));
  return classes;
}

TEST_F(LazFilesTest, ChunksAndTablesOfTheSamePointsAreTheSameBytes) {
  for (const auto& [name, noticed] : noticedFiles(folder)) {
    LazFile file = LazFile::at(noticed.path);
    if (!file.good()) continue;
    SCOPED_TRACE(name);
    Host::LazEncoder encoder(file.format);
    Host::LazClassEncoder classEncoder(file.format);
    for (std::size_t i = 0; i < file.chunks.chunks.size(); ++i) {
      const Bytes records = file.records(i);
      if (!file.good()) break;
      const auto original = file.chunk(file.chunks.chunks[i]);
      Bytes chunk;
      encoder.add(records);
      encoder.finish(chunk);
      // the writer of this one took times that are no numbers for different from themselves
      if (name != "pf6_extremes.laz") {
        EXPECT_TRUE(std::ranges::equal(chunk, original)) << "encoded";
      }
      chunk.clear();
      EXPECT_TRUE(classEncoder.encode(original, classesOf(file, records), {}, chunk, file.error))
          << file.error;
      EXPECT_TRUE(std::ranges::equal(chunk, original)) << "classes";
    }
    if (!file.chunks.fromTable) continue;
    const auto& chunks = file.chunks.chunks;
    const Bytes table = lazChunkTable(file.format, chunks);
    const auto stored = file.chunk({0, 0, file.tableAt(), table.size()});
    EXPECT_TRUE(std::ranges::equal(table, stored)) << "table";
    const std::size_t end = file.tableAt() + table.size();
    EXPECT_TRUE(file.chunks.end == end || file.chunks.end == end + 8) << file.chunks.end << " " << end;
  }
}

TEST_F(LazFilesTest, OtherClassesAreTheBytesOfAllPointsEncodedAnew) {
  for (const auto& [name, noticed] : noticedFiles(folder)) {
    LazFile file = LazFile::at(noticed.path);
    if (!file.good() || name == "pf6_extremes.laz") continue;
    SCOPED_TRACE(name);
    Host::LazClassEncoder encoder(file.format);
    Host::LazDecoder decoder(file.format);
    const std::vector<Host::LazColumn> none(file.format.parts.size());
    for (std::size_t i = 0; i < file.chunks.chunks.size(); ++i) {
      Bytes records = file.records(i);
      if (!file.good()) break;
      std::vector<std::uint8_t> classes = classesOf(file, records);
      for (std::size_t point = 0; point < classes.size(); point += 3) {
        classes[point] = static_cast<std::uint8_t>(point % 29);
        std::byte* const record = &records[point * file.format.recordLength];
        if (file.format.isLayered())
          record[16] = static_cast<std::byte>(classes[point]);
        else
          record[15] = (record[15] & std::byte{0xE0}) | static_cast<std::byte>(classes[point]);
      }
      const auto original = file.chunk(file.chunks.chunks[i]);
      std::vector<std::uint8_t> contexts(file.format.isLayered() ? classes.size() : 0);
      EXPECT_TRUE(decoder.decode(original, classes.size(), none, file.error, contexts)) << file.error;
      Bytes changed;
      EXPECT_TRUE(encoder.encode(original, classes, contexts, changed, file.error)) << file.error;
      Bytes encoded;
      Host::LazEncoder all(file.format);
      all.add(records);
      all.finish(encoded);
      EXPECT_EQ(changed, encoded);
    }
  }
}

TEST_F(LazFilesTest, EachPartByItselfAndInStepsIsWhatTheRecordsHold) {
  for (const char* name :
       {"pf10_channels_v3.laz", "pf8_channels_v4.laz", "pf5_wild.laz", "pf6_constant.laz"}) {
    SCOPED_TRACE(name);
    LazFile file = LazFile::at(folder + "/" + name);
    const LazChunk& chunk = file.chunks.chunks[0];
    const Bytes records = file.records(0);
    const std::size_t length = file.format.recordLength;
    Host::LazDecoder decoder(file.format);
    for (std::size_t part = 0; part < file.format.parts.size(); ++part) {
      const auto [kind, offset, size] = file.format.parts[part];
      EXPECT_EQ(file.format.partAt(offset + size - 1U), part);
      std::vector<Host::LazColumn> columns(file.format.parts.size());
      Bytes values(chunk.points * std::size_t{size});
      columns[part] = {values.data(), size};
      ASSERT_TRUE(decoder.begin(file.chunk(chunk), chunk.points, columns, false, file.error));
      for (std::size_t done = 0; done < chunk.points;) {
        const std::size_t count = std::min<std::size_t>(done == 0 ? 1 : 64, chunk.points - done);
        columns[part].at = &values[done * size];
        ASSERT_TRUE(decoder.next(count, columns, file.error)) << file.error;
        done += count;
      }
      EXPECT_TRUE(decoder.finish(file.error)) << file.error;
      std::size_t different = 0;
      for (std::size_t i = 0; i < chunk.points; ++i)
        different += std::memcmp(&values[i * size], &records[i * length + offset], size) != 0 ? 1U : 0U;
      EXPECT_EQ(different, 0U) << "part " << part;
    }
  }
}

TEST_F(LazFilesTest, CutAnywhereAFileIsRefusedOrWhole) {
  for (const char* name : {"pf0_one_point.laz", "pf6_one_point.laz", "pf4.laz", "pf7_variable.laz"}) {
    const LazFile whole = LazFile::at(folder + "/" + name);
    const std::size_t start = whole.chunks.chunks[0].offset;
    for (std::size_t size = start; size < whole.bytes.size(); size += 1 + size / 200) {
      LazFile cut({whole.bytes.begin(), whole.bytes.begin() + static_cast<std::ptrdiff_t>(size)});
      if (cut.good()) cut.allRecords();
      EXPECT_TRUE(size >= whole.tableAt() ? true : !cut.good() && cut.error.ends_with("came."))
          << name << " " << size << " " << cut.error;
    }
  }
}

} // namespace
} // namespace Zamt::Testing
