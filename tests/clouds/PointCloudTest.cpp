#include "host/clouds/las/LasLayout.h"
#include "tests/clouds/CloudFiles.h"
#include "tests/filters/FilterClouds.h"
#include "tests/support/goldenCases.h"

#include <cmath>

namespace Zamt::Host {
namespace {

using Testing::numberAt;
using Testing::putNumber;
using Testing::readField;
using Testing::readFile;

std::string whyNotOpened(const std::string& path) {
  std::string error;
  EXPECT_FALSE(openCloud(path, error));
  return error;
}

class PointCloudTest : public Testing::CloudFiles {
protected:
  /// A sound file of ten points: format 6 with one extra field.
  std::string soundFile() {
    NewCloud description;
    description.extraFields = {{"Height", FieldType::F32}};
    description.classNames = {{7, "Noise"}};
    const auto fill = [](std::uint64_t i, NewPoint& point) {
      point.position = {static_cast<double>(i), 2, -3};
      point.classification = static_cast<std::uint8_t>(200 + i);
      point.scanAngle = -12;
      point.numberOfReturns = 5;
      point.extra[0] = 0.5 * static_cast<double>(i);
    };
    std::string error;
    EXPECT_TRUE(buildCloud(description, 10, fill, path("sound.las"), Testing::goOn, error)) << error;
    return path("sound.las");
  }
};

TEST_F(PointCloudTest, ReadsWhatItsOriginSaysOfEachFile) {
  struct Case {
    const char* file;
    unsigned minor, format;
    std::uint64_t points;
    std::vector<unsigned> classes{}; ///< those that occur; not looked at when empty
  };
  const Case cases[] = {
      {"autzen-thin.las", 2, 3, 10653, {1, 2}},
      {"sample_c.las", 2, 3, 14408, {2, 3, 4, 5, 6, 11, 14, 31}},
      {"extrabytes.las", 4, 3, 1065},
      {"autzen-bmx-2023_pf7.las", 4, 7, 687},
      {"epsg_4326_pf0.las", 2, 0, 5380},
      {"wkt_and_geotiff_pf6.las", 4, 6, 25408, {2, 3, 4, 5, 6, 7}},
      {"evlr_pf6.las", 4, 6, 1000},
      {"vegetation_1_3.las", 3, 1, 10683},
      {"waveform_pf4.las", 3, 4, 999},
      {"bad_vlr_count.las", 2, 3, 10},
      {"lots_of_vlr.las", 1, 1, 1},
      {"no-points.las", 2, 3, 0},
      {"gps-time-nan.las", 2, 1, 1},
      {"perm_1.0_0.las", 0, 0, 1},
      {"perm_1.2_2.las", 2, 2, 1},
  };
  REQUIRE_REAL_CLOUDS();
  for (const Case& expected : cases) {
    SCOPED_TRACE(expected.file);
    const auto cloud = openWell(data(expected.file));
    if (!cloud) continue;
    EXPECT_EQ(cloud->versionMinor(), expected.minor);
    EXPECT_EQ(cloud->pointFormat(), expected.format);
    EXPECT_EQ(cloud->size(), expected.points);
    const auto counts = Testing::countsOf(*cloud);
    std::vector<unsigned> classes;
    for (unsigned number = 0; number < counts.size(); ++number)
      if (counts[number] != 0) classes.push_back(number);
    EXPECT_TRUE(expected.classes.empty() || classes == expected.classes);
  }
}

TEST_F(PointCloudTest, ExtraBytesAgreeWithANaiveDecoding) {
  REQUIRE_REAL_CLOUDS();
  const auto cloud = openWell(data("extrabytes.las"));
  ASSERT_TRUE(cloud);
  const std::string bytes = readFile(data("extrabytes.las"));
  EXPECT_FALSE(cloud->findField("Reserved"));
  const auto blue = readField(*cloud, "Colors", 2);
  const auto flag = readField(*cloud, "Flags", 1);
  const auto brightness = readField(*cloud, "Intensity_2"); // the name is the standard's already
  const auto times = readField(*cloud, "Time");
  ASSERT_EQ(blue.size() + flag.size() + brightness.size() + times.size(), 4 * 1065U);
  // 34 bytes of format 3; three u16, seven untyped bytes, two i8, one u32 and one u64 behind them.
  for (std::size_t i = 0; i < 1065; ++i) {
    const std::size_t at = 1389 + i * 61 + 34;
    EXPECT_EQ(blue[i], numberAt<std::uint16_t>(bytes, at + 4));
    EXPECT_EQ(flag[i], numberAt<std::int8_t>(bytes, at + 14));
    EXPECT_EQ(brightness[i], numberAt<std::uint32_t>(bytes, at + 15));
    EXPECT_EQ(times[i], static_cast<double>(numberAt<std::uint64_t>(bytes, at + 19)));
  }
}

TEST_F(PointCloudTest, ACountThatOnlyOlderReadersKnowIsTaken) {
  std::string bytes = readFile(soundFile());
  putNumber(bytes, 107, std::uint32_t{10});
  putNumber(bytes, 247, std::uint64_t{0});
  EXPECT_EQ(openWell(write("old.las", bytes))->size(), 10U);
}

TEST_F(PointCloudTest, ScaleOffsetAndMissingValuesOfExtraBytesApplyOnlyWhereFlagged) {
  std::string bytes = readFile(soundFile());
  const std::size_t entry = 375 + 54;
  putNumber(bytes, entry + 40, 1.5); // no data
  putNumber(bytes, entry + 112, 10.0);
  putNumber(bytes, entry + 136, 100.0);
  EXPECT_EQ(readField(*openWell(write("plain.las", bytes)), "Height")[3], 1.5);
  bytes[entry + 3] = 1 | 8 | 16;
  bytes[entry + 4] = '\0'; // and no name
  const auto values = readField(*openWell(write("flagged.las", bytes)), "ExtraBytes");
  EXPECT_EQ(values[2], 110);
  EXPECT_TRUE(std::isnan(values[3]));
}

TEST_F(PointCloudTest, WhatTheBuilderWroteIsReadAndChangedClassesShowEverywhere) {
  const auto file = openWell(soundFile());
  ASSERT_TRUE(file);
  EXPECT_DOUBLE_EQ(readField(*file, "ScanAngle")[0], -12);
  EXPECT_EQ(readField(*file, "NumberOfReturns")[0], 5);
  EXPECT_EQ(file->classNames().at(0).name, "Noise");
  for (const auto& cloud : {file, Testing::asArrays(*file)}) {
    BlockReader reader(*cloud);
    reader.moveTo(cloud->blocks().size() - 1);
    EXPECT_EQ(reader.bounds().low, (std::array<double, 3>{static_cast<double>(reader.first()), 2, -3}));
    EXPECT_EQ(reader.bounds().high, (std::array<double, 3>{9, 2, -3}));
    const std::array<std::uint32_t, 1> last{static_cast<std::uint32_t>(reader.size() - 1)};
    cloud->setClass(reader, last, 5);
    EXPECT_EQ(reader.classes().byteAt(last[0]), 5);
    EXPECT_EQ(readField(*cloud, "Classification"),
              (std::vector<double>{200, 201, 202, 203, 204, 205, 206, 207, 208, 5}));
    EXPECT_EQ(Testing::countsOf(*cloud)[5], 1U);
    EXPECT_EQ(Testing::countsOf(*cloud)[209], 0U);
  }
}

std::string damaged(std::string bytes, const std::string& how) {
  std::istringstream words(how);
  std::string verb;
  std::size_t at = 0;
  unsigned bits = 0;
  std::string number;
  words >> verb >> at >> bits >> number;
  if (verb == "keep") return bytes.substr(0, at);
  if (verb == "drop") return bytes.substr(0, bytes.size() - at);
  const std::uint64_t value = std::stoull(number, nullptr, 0);
  std::memcpy(&bytes.at(at), &value, bits / 8);
  return bytes;
}

TEST_F(PointCloudTest, EveryUnusableFileIsToldAsInTheGoldenDocument) {
  const std::string sound = readFile(soundFile());
  Testing::expectCases("clouds/golden/damaged.md", [&](const std::string& how) {
    std::string sentence = whyNotOpened(write("bad.las", damaged(sound, how)));
    return sentence.replace(sentence.find(path()), path().size(), "~");
  });
  EXPECT_EQ(whyNotOpened(write("bad.las", "ply\nformat ascii 1.0\n")),
            "\"" + path("bad.las") + "\" is not a LAS file. Give a file in LAS 1.0 to 1.4.");
  EXPECT_EQ(whyNotOpened(path("none.las")),
            "The file \"" + path("none.las") + "\" does not exist. Check the spelling of its path.");
  EXPECT_EQ(whyNotOpened(path()), "\"" + path() + "\" is a directory. Name a file in it instead.");
}

/// Whether all points, and all fields of each, lie within the file; or else there is a sentence.
void expectSoundOrRefused(const std::string& bytes) {
  const std::vector<std::byte> exact(std::as_bytes(std::span(bytes)).begin(),
                                     std::as_bytes(std::span(bytes)).end());
  LasLayout layout;
  std::string error;
  if (!readLayout(exact, "bad.las", layout, error)) {
    EXPECT_FALSE(error.empty());
    return;
  }
  EXPECT_LE(layout.points, exact.size() / layout.recordLength);
  EXPECT_LE(layout.points * layout.recordLength, exact.size() - std::min(exact.size(), layout.pointOffset));
  for (const LasField& field : layout.fields)
    EXPECT_LE(field.offset + field.components * sizeOf(field.type), layout.recordLength) << field.name;
}

TEST_F(PointCloudTest, NoByteOfTheHeaderOrRecordsLeadsOutOfTheFile) {
  const std::string sound = readFile(soundFile());
  const std::size_t headEnd = 375 + 54 + 192 + 54 + 64;
  for (std::size_t at = 0; at < headEnd; ++at) {
    for (const int value : {0x00, 0x01, 0x03, 0x08, 0x1F, 0x7F, 0x80, 0xFF}) {
      SCOPED_TRACE(at);
      std::string bytes = sound;
      bytes[at] = static_cast<char>(value);
      expectSoundOrRefused(bytes);
    }
  }
  for (std::size_t length = 0; length < sound.size(); ++length) expectSoundOrRefused(sound.substr(0, length));
}

} // namespace
} // namespace Zamt::Host
