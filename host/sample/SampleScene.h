#pragma once

#include "host/surfaces/Surface.h"

#include <array>
#include <cstdint>
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
/// with roofs and walls, and noise far above and below.
struct SampleScene {
  std::vector<SamplePoint> points; ///< Strip by strip, as they would be flown.
  Mesh water;                      ///< The lake's surface, a little wider than the lake.
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
