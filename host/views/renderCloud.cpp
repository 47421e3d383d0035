#include "host/views/renderCloud.h"

#include "files/writeWholeFile.h"
#include "host/clouds/forEachBlock.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <png.h>
#include <span>

namespace Zamt::Host {

namespace {

using Colour = std::array<std::uint8_t, 3>;

constexpr Colour background{16, 18, 22};
constexpr Colour maskColour{255, 40, 200};
constexpr unsigned widestPicture = 8192; // keeps the memory of a picture below 200 MB

// The colours that maps use for the standard classes; others take one from the wheel behind them.
constexpr std::array<Colour, 12> classColours{{{150, 150, 150},
                                               {185, 185, 185},
                                               {166, 124, 82},
                                               {150, 200, 90},
                                               {90, 170, 70},
                                               {40, 120, 50},
                                               {225, 110, 70},
                                               {250, 230, 60},
                                               {200, 160, 220},
                                               {60, 130, 230},
                                               {120, 80, 60},
                                               {110, 110, 120}}};

Colour colourOfClass(std::uint8_t number) {
  if (number < classColours.size()) return classColours[number];
  const auto wheel = static_cast<unsigned>(number) * 97U;
  return {static_cast<std::uint8_t>(80 + wheel % 160), static_cast<std::uint8_t>(80 + wheel / 3 % 160),
          static_cast<std::uint8_t>(80 + wheel / 7 % 160)};
}

/// Where points fall: pixels to the right and down, and how near they are.
struct Projection {
  std::array<double, 3> right{};
  std::array<double, 3> down{};
  std::array<double, 3> near{};
};

Projection projectionOf(const View& view) {
  const double azimuth = view.azimuth * std::numbers::pi / 180;
  const double elevation = view.elevation * std::numbers::pi / 180;
  const double sinA = std::sin(azimuth);
  const double cosA = std::cos(azimuth);
  const double sinE = std::sin(elevation);
  const double cosE = std::cos(elevation);
  return {{cosA, -sinA, 0}, {-sinA * sinE, -cosA * sinE, -cosE}, {-sinA * cosE, -cosA * cosE, sinE}};
}

double dot(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

struct Extent {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();
  void take(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
  double span() const { return high > low ? high - low : 0; }
};

/// Where most heights lie; a few birds far up must not flatten the relief of all others.
struct Heights {
  double count = 0;
  double mean = 0;
  double squares = 0; ///< The sum of squared distances from the mean, kept up as the heights come.
  void take(double height) {
    ++count;
    const double gap = height - mean;
    mean += gap / count;
    squares += gap * (height - mean);
  }
  /// 0 for the lowest of most, 1 for the highest.
  double share(double height) const {
    constexpr double deviations = 4; // two on either side of the mean
    const double spread = std::sqrt(squares / std::max(count, 1.0)) * deviations;
    return spread > 0 ? std::clamp(0.5 + (height - mean) / spread, 0.0, 1.0) : 1;
  }
};

/// The picture under way: what is nearest at each pixel so far.
struct Canvas {
  Image image;
  std::vector<float> nearest;
  unsigned dotSize = 1;

  /// A square dot around a place, cut off at the edges.
  void draw(unsigned column, unsigned row, float nearness, const Colour& colour) {
    const unsigned half = dotSize / 2;
    const unsigned endColumn = std::min(column - std::min(column, half) + dotSize, image.width);
    const unsigned endRow = std::min(row - std::min(row, half) + dotSize, image.height);
    for (unsigned y = row - std::min(row, half); y < endRow; ++y)
      for (unsigned x = column - std::min(column, half); x < endColumn; ++x) put(x, y, nearness, colour);
  }

private:
  void put(unsigned column, unsigned row, float nearness, const Colour& colour) {
    const std::size_t pixel = std::size_t{row} * image.width + column;
    if (nearness <= nearest[pixel]) return;
    nearest[pixel] = nearness;
    std::copy(colour.begin(), colour.end(), image.pixels.begin() + static_cast<std::ptrdiff_t>(pixel * 3));
  }
};

Canvas blankCanvas(unsigned width, unsigned height) {
  const std::size_t pixels = std::size_t{width} * height;
  Canvas canvas{{width, height, std::vector<std::uint8_t>(pixels * 3)},
                std::vector<float>(pixels, -std::numeric_limits<float>::infinity())};
  for (std::size_t i = 0; i < pixels; ++i)
    std::copy(background.begin(), background.end(),
              canvas.image.pixels.begin() + static_cast<std::ptrdiff_t>(i * 3));
  return canvas;
}

/// Dots about as large as the gaps between the points, so that a thin cloud shows as an area too.
unsigned dotSizeFor(std::uint64_t points, const Image& image) {
  constexpr double largest = 15;
  constexpr double overlap = 1.3;
  const double pixels = static_cast<double>(image.width) * image.height;
  const double gap = std::sqrt(pixels / static_cast<double>(std::max<std::uint64_t>(points, 1)));
  return static_cast<unsigned>(std::clamp(gap * overlap, 1.0, largest));
}

/// Darker below, lighter above, so that the relief shows.
Colour shaded(const Colour& colour, double heightShare) {
  const double light = 0.65 + 0.35 * heightShare;
  Colour out{};
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = static_cast<std::uint8_t>(colour[i] * light);
  return out;
}

/// What has to be known of all points before the first is drawn.
struct Survey {
  Extent across;
  Extent along;
  Heights heights;
};

/// Calls `visit(index, position)` for each point of a block; the index counts from the block's first.
template <class Visit>
void forEachPoint(BlockReader& block, Visit visit) {
  constexpr std::size_t pieceSize = 1024;
  std::array<std::array<double, pieceSize>, 3> values;
  for (std::size_t from = 0; from < block.size(); from += pieceSize) {
    const std::size_t count = std::min(pieceSize, block.size() - from);
    for (std::size_t axis = 0; axis < 3; ++axis)
      block.axis(axis).read(from, std::span(values[axis]).first(count));
    for (std::size_t i = 0; i < count; ++i)
      visit(from + i, std::array<double, 3>{values[0][i], values[1][i], values[2][i]});
  }
}

/// Draws point by point onto a canvas whose size is settled.
class Painter {
public:
  Painter(const Projection& projection, const Survey& survey, double scale, Canvas& canvas)
      : projection_(projection), survey_(survey), scale_(scale), canvas_(canvas) {}

  void draw(const std::array<double, 3>& position, std::uint8_t number, bool masked, bool outline) {
    constexpr float inFront = 1e30F; // nearer than any world coordinate
    const unsigned column = pixel(dot(projection_.right, position), survey_.across.low, canvas_.image.width);
    const unsigned row = pixel(dot(projection_.down, position), survey_.along.low, canvas_.image.height);
    if (!masked || outline)
      canvas_.draw(column, row, static_cast<float>(dot(projection_.near, position)),
                   shaded(colourOfClass(number), survey_.heights.share(position[2])));
    if (masked && outline && column > 0) canvas_.draw(column - 1, row, inFront, maskColour);
    if (masked && !outline) canvas_.draw(column, row, inFront, maskColour);
  }

private:
  unsigned pixel(double value, double low, unsigned size) const {
    return static_cast<unsigned>(std::clamp((value - low) * scale_, 0.0, size - 1.0));
  }

  const Projection& projection_;
  const Survey& survey_;
  double scale_;
  Canvas& canvas_;
};

} // namespace

bool renderCloud(const PointCloud& cloud, const PointMask* mask, const View& view, const Stop& stop,
                 Image& image, std::string& problem) {
  const Projection projection = projectionOf(view);
  Survey survey;
  const auto measure = [&](BlockReader& block) {
    forEachPoint(block, [&](std::size_t, const std::array<double, 3>& position) {
      survey.across.take(dot(projection.right, position));
      survey.along.take(dot(projection.down, position));
      survey.heights.take(position[2]);
    });
  };
  if (!walkBlocks(cloud, axisColumns, stop, measure, problem)) return false;
  const unsigned width = std::clamp(view.width, 1U, widestPicture);
  const double scale = survey.across.span() > 0 ? (width - 1) / survey.across.span() : 1;
  const auto height = static_cast<unsigned>(
      std::clamp(survey.along.span() * scale + 1, 1.0, static_cast<double>(widestPicture)));
  Canvas canvas = blankCanvas(width, height);
  canvas.dotSize = dotSizeFor(cloud.size(), canvas.image);
  Painter painter(projection, survey, scale, canvas);
  const auto paint = [&](BlockReader& block) {
    const Column classes = block.classes();
    forEachPoint(block, [&](std::size_t index, const std::array<double, 3>& position) {
      const std::uint64_t point = block.first() + index;
      const bool masked = mask && point < mask->size() && mask->test(point);
      painter.draw(position, classes.byteAt(index), masked, view.outlineMask);
    });
  };
  std::vector<ColumnKey> drawn(axisColumns.begin(), axisColumns.end());
  drawn.push_back(cloud.keyOf(cloud.classField()));
  if (!walkBlocks(cloud, drawn, stop, paint, problem)) return false;
  image = std::move(canvas.image);
  return true;
}

bool writePng(const Image& image, const std::string& path, std::string& problem) {
  png_image header{};
  header.version = PNG_IMAGE_VERSION;
  header.width = image.width;
  header.height = image.height;
  header.format = PNG_FORMAT_RGB;
  png_alloc_size_t size = 0;
  std::vector<std::uint8_t> bytes;
  if (png_image_write_to_memory(&header, nullptr, &size, 0, image.pixels.data(), 0, nullptr)) {
    bytes.resize(size);
    if (png_image_write_to_memory(&header, bytes.data(), &size, 0, image.pixels.data(), 0, nullptr)) {
      bytes.resize(size);
      return writeWholeFile(path, std::as_bytes(std::span(bytes)), problem);
    }
  }
  problem = "The picture could not be made: " + std::string(header.message) + ".";
  return false;
}

} // namespace Zamt::Host
