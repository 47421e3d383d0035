#pragma once

#include "files/Stop.h"
#include "host/clouds/PointCloud.h"
#include "host/clouds/PointMask.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Zamt::Host {

/// A picture in rows from the top, three bytes (red, green, blue) a pixel.
struct Image {
  unsigned width = 0;
  unsigned height = 0;
  std::vector<std::uint8_t> pixels;
};

/// How to look at a cloud.
struct View {
  unsigned width = 1200;    ///< Pixels; the height follows from the cloud's extent.
  double azimuth = 0;       ///< Degrees, clockwise from north, of the direction one looks into.
  double elevation = 90;    ///< Degrees above the horizon that one looks from; 90 is straight from above.
  bool outlineMask = false; ///< Draw masked points as they are but for a rim, rather than filled.
};

/// Draws every point in the colour of its class, the nearest one of a pixel winning, and the points of `mask`
/// (null for none) in the mask colour in front of all others, so that a few changed points are seen. False,
/// with a sentence in `problem`, when it was stopped or a block can't be read.
bool renderCloud(const PointCloud& cloud, const PointMask* mask, const View& view, const Stop& stop,
                 Image& image, std::string& problem);

/// Writes `image` as a PNG file, whole or not at all. False with a sentence in `problem` on failure.
bool writePng(const Image& image, const std::string& path, std::string& problem);

} // namespace Zamt::Host
