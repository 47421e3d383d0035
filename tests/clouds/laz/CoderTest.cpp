#include "host/clouds/laz/IntegerCoder.h"
#include "host/clouds/laz/MovingMedian.h"
#include "host/clouds/laz/RangeDecoder.h"
#include "host/clouds/laz/RangeEncoder.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace Zamt::Host::Laz {
namespace {

std::string hexadecimal(std::span<const std::byte> bytes) {
  std::string text;
  for (const std::byte each : bytes) {
    text += "0123456789abcdef"[std::to_integer<unsigned>(each) >> 4];
    text += "0123456789abcdef"[std::to_integer<unsigned>(each) & 15];
  }
  return text;
}

/// Encodes a stream, checks its bytes, and has the same calls decode what they encoded.
template <class Code>
void expectStream(const std::string& expected, Code code) {
  GrowingBytes bytes;
  RangeEncoder encoder;
  encoder.start(bytes);
  code(encoder);
  const auto stream = encoder.finish();
  EXPECT_EQ(hexadecimal(stream), expected);
  StreamBytes source;
  RangeDecoder decoder;
  decoder.start(source, stream);
  code(decoder);
  EXPECT_TRUE(decoder.proceed() && !decoder.isBroken());
  EXPECT_EQ(decoder.consumed(), stream.size());
}

TEST(CoderTest, StreamsAreTheBytesThatTheFormatSays) {
  expectStream("01000000", [](auto&) {});
  expectStream("87b71729000000", [](auto& coder) {
    BitModel model;
    for (unsigned i = 0; i < 40; ++i) EXPECT_EQ(coder.bit(model, i % 5 == 0), i % 5 == 0);
    EXPECT_EQ(model.zeros, 33U);
    EXPECT_EQ(model.zeroShare, 6436U);
  });
  expectStream("1427e59b40b3dfdfdec1bd7eae000000", []<class Coder>(Coder& coder) {
    typename Coder::template Model<5> model;
    for (unsigned i = 0; i < 60; ++i) EXPECT_EQ(coder.symbol(model, i * i % 5), i * i % 5);
    EXPECT_EQ(std::vector(model.starts.begin(), model.starts.begin() + 5),
              (std::vector<std::uint16_t>{0, 6800, 19166, 19784, 20402}));
  });
  expectStream("9ff7ffaa21cd430eece6000000", [](auto& coder) {
    EXPECT_EQ(coder.raw(5, 19), 19U);
    EXPECT_EQ(coder.raw(19, 0x7FFFF), 0x7FFFFU);
    EXPECT_EQ(coder.raw(20, 0xABCDE), 0xABCDEU);
    EXPECT_EQ(coder.raw(32, 0xDEADBEEF), 0xDEADBEEFU);
  });
}

TEST(CoderTest, IntegersOfEachClassAreTheBytesThatTheFormatSays) {
  expectStream("000f791c8c9723a2b5ae201c7755e60d21af4900"
               "0000",
               []<class Coder>(Coder& coder) {
                 IntegerCoder<Coder, 32, 1> integers;
                 std::vector<unsigned> classes;
                 for (const std::int32_t each :
                      {0, 1, -1, 2, 5, 100, -100, 70000, -70000, 2147483647, -2147483647 - 1, 0}) {
                   EXPECT_EQ(integers.code(coder, 0, static_cast<std::uint32_t>(each), 0),
                             static_cast<std::uint32_t>(each));
                   classes.push_back(integers.k());
                 }
                 EXPECT_EQ(classes, (std::vector<unsigned>{0, 0, 1, 1, 3, 7, 7, 17, 17, 31, 32, 0}));
               });
  expectStream("0f7da74285bfd9000000", []<class Coder>(Coder& coder) {
    IntegerCoder<Coder, 16, 1> integers;
    struct Step {
      std::uint32_t from, to;
    };
    for (const auto [from, to] : {Step{0, 65535}, {65535, 0}, {100, 32868}, {100, 32867}, {40000, 40001}})
      EXPECT_EQ(integers.code(coder, from, to, 0), to);
  });
}

TEST(CoderTest, TheMedianFollowsTheNumbersByTurns) {
  MovingMedian median;
  std::vector<int> medians;
  for (const int each : {5, -3, 9, 9, 2, 100, -50, 4, 4, 4}) {
    median.push(each);
    medians.push_back(median.median());
  }
  EXPECT_EQ(medians, (std::vector{0, 0, 0, 0, 2, 9, 9, 4, 4, 4}));
}

/// A stream that outgrows the room of an encoder over and over, in which the carry runs through many bytes.
TEST(CoderTest, LongStreamsDecodeToWhatWasEncoded) {
  const auto code = []<class Coder>(Coder& coder) {
    typename Coder::template Model<256> model;
    std::uint32_t state = 1;
    for (unsigned i = 0; i < 100000; ++i) {
      ASSERT_TRUE(coder.proceed());
      state = state * 1664525 + 1013904223;
      const unsigned symbol = i % 50000 < 20000 ? 255 : state >> 24;
      ASSERT_EQ(coder.symbol(model, symbol), symbol);
    }
  };
  GrowingBytes bytes;
  RangeEncoder encoder;
  encoder.start(bytes);
  code(encoder);
  const auto stream = encoder.finish();
  StreamBytes source;
  RangeDecoder decoder;
  decoder.start(source, stream);
  code(decoder);
  EXPECT_EQ(decoder.consumed(), stream.size());
  decoder.start(source, stream.first(stream.size() / 2));
  typename RangeDecoder::Model<256> model;
  unsigned symbols = 0;
  for (; decoder.proceed(); ++symbols) decoder.symbol(model);
  EXPECT_LT(symbols, 100000U);
}

} // namespace
} // namespace Zamt::Host::Laz
