#pragma once

#include "host/surfaces/Surface.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Zamt::Host {

/// One return of the made-up survey. Coordinates in metres, time in seconds.
struct SamplePoint {
  double x = 0;
  double y = 0;
  double z = 0;
  std::array<float, 3> normal{0, 0, 1}; ///< A unit vector; of plants and noise, in no particular direction.
  float amplitude = 0;                  ///< Of the echo, in decibels times four, from 0 to 255.
  std::uint16_t intensity = 0;
  std::uint8_t returnNumber = 1; ///< 1 to `returns`.
  std::uint8_t returns = 1;
  std::uint8_t classNumber = 0; ///< Of the standard classes; deliberately wrong for some points.
  double gpsTime = 0;           ///< Adjusted standard time.
};

/// A made-up scene to try Quindles on: rolling ground with a lake, low, medium and high plants, buildings
/// with roofs and walls, and noise far above and below. Its points are made anew when they are read; until
/// then each takes two or three bytes.
class SampleScene {
public:
  class Reader;

  std::uint64_t points() const { return starts_.back(); }

  /// The lake's surface, a little wider than the lake.
  const Mesh& water() const { return water_; }

private:
  friend SampleScene makeSampleScene(std::uint64_t points, std::uint64_t seed);

  std::uint64_t seed_ = 0;
  std::vector<std::uint64_t> starts_{0}; ///< The first point of each group, and behind the last their number.
  /// For each group, in the order in which its points are made, how many random numbers were drawn from where
  /// the one before was begun to where it is; seven bits a byte, the lowest first, the top bit on all but the
  /// last.
  std::vector<std::vector<std::uint8_t>> draws_;
  Mesh water_;
};

/// Gives one thread the points of a scene, strip by strip, as they would be flown. Cheapest in their order.
class SampleScene::Reader {
public:
  /// `scene` must outlive the reader.
  explicit Reader(const SampleScene& scene);
  ~Reader();
  Reader(Reader&&) noexcept;

  /// The point of that number; it stays until another one is asked for.
  const SamplePoint& at(std::uint64_t point);

private:
  void makeGroup(std::size_t group);

  const SampleScene& scene_;
  std::unique_ptr<class SampleMaker> maker_;
  std::uint64_t first_ = 0; ///< Of the points that are made.
  std::vector<SamplePoint> points_;
};

/// The south-west corner, size in x and y, and water level of every scene, in metres.
inline constexpr std::array<double, 2> sampleOrigin{512000, 5403000};
inline constexpr std::array<double, 2> sampleSize{200, 160};
inline constexpr double sampleWaterLevel = 412.5;

/// Makes a scene of exactly `points` points. The same numbers give the same scene, to the last bit, on every
/// machine: only operations that round alike everywhere are used.
///
/// What is wrong in it, for a Quindle to put right: the lake's bottom is class 2 (Ground); most wall points
/// are class 1 (Unclassified), some 5; a tenth of the low plants is class 2; noise is class 1 or 2.
SampleScene makeSampleScene(std::uint64_t points, std::uint64_t seed);

} // namespace Zamt::Host
