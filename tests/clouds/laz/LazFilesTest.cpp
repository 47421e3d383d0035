#include "host/clouds/laz/LazClassEncoder.h"
#include "host/clouds/laz/LazEncoder.h"
#include "tests/clouds/laz/LazFile.h"
#include "tests/clouds/laz/sha256.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

namespace Zamt::Testing {
namespace {

const std::string folder = std::string(QUINDLE_TEST_DATA) + "/laz/";

/// A file of the folder, with what its notice promises of it.
struct Promise {
  std::string file;
  std::string points; ///< "–" for files that can't be decoded.
  std::string sum;
};

std::vector<Promise> promises() {
  std::vector<Promise> all;
  std::ifstream notice(folder + "NOTICE.md");
  std::string line;
  while (std::getline(notice, line) && line != "## Points") {
  }
  while (std::getline(notice, line)) {
    std::istringstream words(line);
    std::string bar;
    std::string bytes;
    Promise promise;
    if (words >> bar >> promise.file >> bar >> bytes >> bar >> promise.points >> bar >> promise.sum &&
        promise.file.ends_with(".laz"))
      all.push_back(promise);
  }
  return all;
}

class LazFilesTest : public ::testing::Test {
protected:
  void SetUp() override {
    if (!std::filesystem::exists(folder)) GTEST_SKIP() << "No test clouds at " << folder << ".";
  }
};

TEST_F(LazFilesTest, EveryPointOfEveryFileDecodesToItsRecord) {
  const auto all = promises();
  EXPECT_GE(all.size(), 70U);
  for (const Promise& promise : all) {
    if (promise.points == "–") continue;
    SCOPED_TRACE(promise.file);
    LazFile file = LazFile::at(folder + promise.file);
    const Bytes records = file.allRecords();
    EXPECT_TRUE(file.good()) << file.error;
    EXPECT_EQ(std::to_string(records.size() / std::max<std::size_t>(file.format.recordLength, 1)),
              promise.points);
    EXPECT_EQ(sha256(records), promise.sum);
  }
}

TEST_F(LazFilesTest, FilesThatCannotBeDecodedAreRefusedWithASentence) {
  const std::string again = ". Fetch the file again from where it came.";
  const std::string old =
      "\"a.laz\" was written by a LAZ compressor of 2010 or 2011 (LAZ 1.x), which can't be "
      "read. Convert it with a current LAZ tool first.";
  const std::string unknown =
      ", which can't be read. Convert it to LAS 1.4, or to LAZ with another tool, first.";
  const std::string points = "The points of \"a.laz\" can't be read: ";
  const std::map<std::string, std::string> sentences{
      {"old_v1.laz", old},
      {"bad_type.laz", old},
      {"bad_coder.laz", "\"a.laz\" is compressed with coder 15" + unknown},
      {"bad_compressor.laz", "\"a.laz\" is compressed with compressor 16" + unknown},
      {"broken_interrupted_variable.laz",
       points +
           "it has no chunk table, since its compressor was interrupted, and without it chunks of "
           "different sizes can't be found" +
           again},
      {"broken_half_pf1.laz",
       points + "its chunk table is damaged, and in chunk 0, at byte 421, the file ends too early" + again},
      {"broken_half_pf6.laz",
       points + "its chunk table is damaged, and in chunk 1, at byte 62393, the file ends too early" + again},
      {"broken_data_pf1.laz",
       "Chunk 0 of \"a.laz\", at byte 421, is damaged: it is longer than its points" + again},
      {"broken_data_pf6.laz",
       "Chunk 1 of \"a.laz\", at byte 62393, is damaged: its layer of classes ends too early" + again},
      {"broken_layer_size.laz", "Chunk 0 of \"a.laz\", at byte 1504, is damaged: the sizes of its layers are "
                                "not those of the chunk" +
                                    again}};
  std::map<std::string, std::string> said;
  for (const Promise& promise : promises()) {
    if (promise.points != "–") continue;
    LazFile file = LazFile::at(folder + promise.file);
    if (file.good()) file.allRecords();
    said[promise.file] = file.error;
  }
  EXPECT_EQ(said, sentences);
}

/// The classes that all points of a chunk have.
std::vector<std::uint8_t> classesOf(const LazFile& file, const Bytes& records) {
  std::vector<std::uint8_t> classes;
  const bool layered = file.format.isLayered();
  for (std::size_t at = layered ? 16 : 15; at < records.size(); at += file.format.recordLength)
    classes.push_back(std::to_integer<std::uint8_t>(records[at] & std::byte(layered ? 0xFF : 0x1F)));
  return classes;
}

TEST_F(LazFilesTest, ChunksAndTablesOfTheSamePointsAreTheSameBytes) {
  for (const Promise& promise : promises()) {
    LazFile file = LazFile::at(folder + promise.file);
    if (!file.good()) continue;
    SCOPED_TRACE(promise.file);
    Host::LazEncoder encoder(file.format);
    Host::LazClassEncoder classEncoder(file.format);
    for (std::size_t i = 0; i < file.chunks.chunks.size(); ++i) {
      const Bytes records = file.records(i);
      if (!file.good()) break;
      const auto original = file.chunk(file.chunks.chunks[i]);
      Bytes chunk;
      encoder.add(records);
      encoder.finish(chunk);
      EXPECT_TRUE(std::ranges::equal(chunk, original)) << "encoded";
      chunk.clear();
      std::string damage;
      EXPECT_TRUE(classEncoder.encode(original, classesOf(file, records), {}, chunk, damage)) << damage;
      EXPECT_TRUE(std::ranges::equal(chunk, original)) << "classes";
    }
  }
}

} // namespace
} // namespace Zamt::Testing
