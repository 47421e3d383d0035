#include "host/sample/SampleScene.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

namespace Zamt::Host {

namespace {

/// The standard classes that occur.
enum Class : std::uint8_t {
  Unclassified = 1,
  Ground = 2,
  LowPlants = 3,
  MediumPlants = 4,
  HighPlants = 5,
  Building = 6,
  Water = 9
};

/// splitmix64, by Steele, Lea and Flood, "Fast splittable pseudorandom number generators", 2014.
std::uint64_t mix(std::uint64_t value) {
  value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9ULL;
  value = (value ^ (value >> 27)) * 0x94d049bb133111ebULL;
  return value ^ (value >> 31);
}

/// 53 bits to [0, 1).
double toUnit(std::uint64_t bits) { return static_cast<double>(bits >> 11) * 0x1p-53; }

/// Compilers differ in which operand or argument they work out first, so no expression draws twice: the scene
/// has to be the same whoever built the program.
class Random {
public:
  explicit Random(std::uint64_t seed) : seed_(seed) {}

  /// How many numbers were drawn, which is all there is to remember to draw the next ones again.
  std::uint64_t drawn() const { return drawn_; }
  void goTo(std::uint64_t drawn) { drawn_ = drawn; }

  double unit() { return toUnit(mix(seed_ + ++drawn_ * 0x9e3779b97f4a7c15ULL)); }
  double between(double low, double high) { return low + (high - low) * unit(); }
  bool chance(double probability) { return unit() < probability; }

  /// Bell-shaped with about this deviation, never more than 3.5 times of it away.
  double around(double mean, double deviation) {
    double sum = 0;
    for (int i = 0; i < 4; ++i) sum += unit();
    return mean + (sum - 2) * 1.732 * deviation;
  }

  std::array<double, 3> direction() {
    for (;;) {
      const std::array<double, 3> v{between(-1, 1), between(-1, 1), between(-1, 1)};
      const double square = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
      if (square > 1 || square < 0.01) continue;
      const double length = std::sqrt(square);
      return {v[0] / length, v[1] / length, v[2] / length};
    }
  }

private:
  std::uint64_t seed_;
  std::uint64_t drawn_ = 0;
};

double smooth(double t) { return t * t * (3 - 2 * t); }

/// Value noise from 0 to 1 over a lattice of this spacing.
double noiseAt(double x, double y, double spacing, std::uint64_t seed) {
  const double column = std::floor(x / spacing);
  const double row = std::floor(y / spacing);
  const auto corner = [&](int right, int up) {
    const auto cx = static_cast<std::uint64_t>(static_cast<std::int64_t>(column) + right);
    const auto cy = static_cast<std::uint64_t>(static_cast<std::int64_t>(row) + up);
    return toUnit(mix(seed ^ mix(cx * 0x9e3779b97f4a7c15ULL + mix(cy))));
  };
  const double tx = smooth(x / spacing - column);
  const double ty = smooth(y / spacing - row);
  const double south = corner(0, 0) + (corner(1, 0) - corner(0, 0)) * tx;
  const double north = corner(0, 1) + (corner(1, 1) - corner(0, 1)) * tx;
  return south + (north - south) * ty;
}

/// A house on a rectangle, with a gable roof whose ridge runs along y in the middle.
struct House {
  double west, south, width, depth, floor, eaves, ridge;

  bool covers(double x, double y) const {
    return x >= west && x <= west + width && y >= south && y <= south + depth;
  }
  double roofSlope() const { return (ridge - eaves) / (width / 2); }
  double roofAt(double x) const { return ridge - roofSlope() * std::abs(x - (west + width / 2)); }
};

struct Tree {
  double x, y, foot, height, radius;
};

struct Ellipse {
  double x, y, rx, ry;

  /// 0 in the middle, 1 on the line; squared, as that needs no root.
  double squareAt(double px, double py) const {
    const double dx = (px - x) / rx;
    const double dy = (py - y) / ry;
    return dx * dx + dy * dy;
  }
};

constexpr Ellipse basin{62, 98, 46, 38};
constexpr std::size_t houseCount = 7;
constexpr std::size_t treeCount = 70;

/// How much of the survey goes to what.
constexpr double noiseShare = 0.003;
constexpr double wallShare = 0.08;
constexpr double treeShare = 0.16;
constexpr double shrubShare = 0.10;

} // namespace

/// Positions here are relative to the scene's corner.
class SampleMaker {
public:
  explicit SampleMaker(std::uint64_t start) : seed_(mix(start)), random_(seed_) {
    placeHouses();
    placeTrees();
  }

  Random& random() { return random_; }

  SamplePoint next() {
    const double kind = random_.unit();
    if (kind < noiseShare) return noise();
    if (kind < noiseShare + wallShare) return wall();
    if (kind < noiseShare + wallShare + treeShare) return treeCrown();
    if (kind < noiseShare + wallShare + treeShare + shrubShare) return shrub();
    return open();
  }

private:
  /// Above the water everywhere outside of the basin.
  double groundAt(double x, double y) const {
    const double rolling = 4.5 * noiseAt(x, y, 55, seed_) + 0.7 * noiseAt(x, y, 13, seed_ + 1);
    const double square = basin.squareAt(x, y);
    const double bowl = square < 1 ? 9 * (1 - square) * (1 - square) : 0;
    return sampleWaterLevel + 0.6 + rolling - bowl;
  }

  std::array<double, 3> groundNormal(double x, double y) const {
    const double dx = (groundAt(x + 0.5, y) - groundAt(x - 0.5, y));
    const double dy = (groundAt(x, y + 0.5) - groundAt(x, y - 0.5));
    const double length = std::sqrt(dx * dx + dy * dy + 1);
    return {-dx / length, -dy / length, 1 / length};
  }

  bool isWater(double x, double y) const {
    return basin.squareAt(x, y) < 1 && groundAt(x, y) < sampleWaterLevel;
  }

  const House* houseAt(double x, double y) const {
    for (const House& house : houses_)
      if (house.covers(x, y)) return &house;
    return nullptr;
  }

  void placeHouses() {
    for (std::size_t i = 0; i < houseCount; ++i) {
      const double column = static_cast<double>(i % 2);
      const double row = std::floor(static_cast<double>(i) / 2);
      House house{};
      house.width = random_.between(9, 14);
      house.depth = random_.between(12, 20);
      house.west = 128 + column * 34 + random_.between(0, 10);
      house.south = 8 + row * 38 + random_.between(0, 8);
      house.floor = groundAt(house.west + house.width / 2, house.south + house.depth / 2) - 0.5;
      house.eaves = house.floor + random_.between(4, 8);
      house.ridge = house.eaves + random_.between(2, 4);
      houses_[i] = house;
    }
  }

  void placeTrees() {
    for (Tree& tree : trees_) {
      do {
        tree.x = random_.between(4, sampleSize[0] - 4);
        tree.y = random_.between(4, sampleSize[1] - 4);
      } while (basin.squareAt(tree.x, tree.y) < 1 || houseAt(tree.x, tree.y) != nullptr);
      tree.foot = groundAt(tree.x, tree.y);
      tree.height = random_.between(6, 19);
      tree.radius = tree.height * random_.between(0.18, 0.3);
    }
  }

  /// A single return at a place, with what its material does to the light.
  SamplePoint make(double x, double y, double z, const std::array<double, 3>& normal,
                   std::uint8_t classNumber, double amplitude, double spread) {
    SamplePoint point;
    point.x = sampleOrigin[0] + std::clamp(x, 0.0, sampleSize[0]);
    point.y = sampleOrigin[1] + std::clamp(y, 0.0, sampleSize[1]);
    point.z = z + random_.around(0, 0.02);
    for (std::size_t i = 0; i < 3; ++i) point.normal[i] = static_cast<float>(normal[i]);
    point.classNumber = classNumber;
    const double received = std::clamp(random_.around(amplitude, spread), 0.0, 255.0);
    point.amplitude = static_cast<float>(std::floor(received * 10) / 10);
    point.intensity = static_cast<std::uint16_t>(received * 220 + 500 * random_.unit());
    return point;
  }

  void setReturns(SamplePoint& point, double last) {
    point.returns = static_cast<std::uint8_t>(2 + static_cast<int>(3 * random_.unit()));
    point.returnNumber =
        random_.chance(last)
            ? point.returns
            : static_cast<std::uint8_t>(1 + static_cast<int>((point.returns - 1) * random_.unit()));
  }

  SamplePoint noise() {
    const double x = random_.between(0, sampleSize[0]);
    const double y = random_.between(0, sampleSize[1]);
    const double off = random_.chance(0.6) ? random_.between(30, 120) : -random_.between(8, 40);
    const std::uint8_t classNumber = random_.chance(0.5) ? Unclassified : Ground;
    return make(x, y, groundAt(x, y) + off, random_.direction(), classNumber, 6, 3);
  }

  SamplePoint wall() {
    const House& house = houses_[static_cast<std::size_t>(random_.unit() * houseCount)];
    const double side = random_.unit() * (house.width + house.depth);
    const bool alongX = side < house.width;
    const bool far = random_.chance(0.5);
    const double x = alongX ? house.west + side : house.west + (far ? house.width : 0);
    const double y = alongX ? house.south + (far ? house.depth : 0) : house.south + side - house.width;
    const double top = alongX ? house.roofAt(x) : house.eaves;
    const double outward = far ? 1 : -1;
    const std::array<double, 3> normal{alongX ? 0 : outward, alongX ? outward : 0,
                                       random_.between(-0.05, 0.05)};
    const std::uint8_t classNumber = random_.chance(0.85) ? Unclassified : HighPlants;
    const double foot = groundAt(x, y);
    return make(x, y, random_.between(std::min(foot, top), top), normal, classNumber, 120, 12);
  }

  SamplePoint treeCrown() {
    const Tree& tree = trees_[static_cast<std::size_t>(random_.unit() * treeCount)];
    const std::array<double, 3> out = random_.direction();
    const double inward = 0.5 * random_.unit();
    const double depth = 1 - inward * random_.unit();
    const double halfHeight = tree.height * 0.38;
    const double x = tree.x + out[0] * tree.radius * depth;
    const double y = tree.y + out[1] * tree.radius * depth;
    const double z = tree.foot + tree.height - halfHeight + out[2] * halfHeight * depth;
    SamplePoint point = make(x, y, z, random_.direction(), HighPlants, 65, 14);
    setReturns(point, 0.1);
    return point;
  }

  /// A low or medium plant, on open land.
  SamplePoint shrub() {
    double x = 0;
    double y = 0;
    do {
      x = random_.between(0, sampleSize[0]);
      y = random_.between(0, sampleSize[1]);
    } while (basin.squareAt(x, y) < 1 || houseAt(x, y) != nullptr || noiseAt(x, y, 18, seed_ + 2) < 0.45);
    const bool low = random_.chance(0.6);
    const double height = low ? random_.between(0.15, 0.9) : random_.between(0.9, 3);
    std::uint8_t classNumber = low ? LowPlants : MediumPlants;
    if (low && random_.chance(0.1)) classNumber = Ground;
    SamplePoint point =
        make(x, y, groundAt(x, y) + height, random_.direction(), classNumber, low ? 78 : 70, low ? 8 : 12);
    setReturns(point, 0.4);
    return point;
  }

  /// Whatever a beam meets from above: water and what is under it, a roof, or the ground.
  SamplePoint open() {
    const double x = random_.between(0, sampleSize[0]);
    const double y = random_.between(0, sampleSize[1]);
    if (const House* house = houseAt(x, y)) return roof(*house, x, y);
    if (isWater(x, y)) return lake(x, y);
    return make(x, y, groundAt(x, y), groundNormal(x, y), Ground, 42, 8);
  }

  SamplePoint roof(const House& house, double x, double y) {
    const double slope = x < house.west + house.width / 2 ? house.roofSlope() : -house.roofSlope();
    const double length = std::sqrt(slope * slope + 1);
    const std::uint8_t classNumber = random_.chance(0.85) ? Building : Unclassified;
    return make(x, y, house.roofAt(x), {-slope / length, 0, 1 / length}, classNumber, 150, 15);
  }

  SamplePoint lake(double x, double y) {
    const bool surface = random_.chance(0.45);
    const double bottom = groundAt(x, y);
    const double reached = 24 - 2 * (sampleWaterLevel - bottom);
    SamplePoint point = surface ? make(x, y, sampleWaterLevel, {0, 0, 1}, Water, 9, 3)
                                : make(x, y, bottom, groundNormal(x, y), Ground, reached, 4);
    point.returns = 2;
    point.returnNumber = surface ? 1 : 2;
    return point;
  }

  std::uint64_t seed_;
  Random random_;
  std::array<House, houseCount> houses_{};
  std::array<Tree, treeCount> trees_{};
};

namespace {

constexpr double stripWidth = 20;
constexpr std::size_t strips = 9; ///< The last one is the north edge, a line.

double stripOf(const SamplePoint& point) { return std::floor((point.y - sampleOrigin[1]) / stripWidth); }

/// In which of the groups that a strip is cut into from west to east a point lies.
std::size_t slabOf(const SamplePoint& point, std::size_t slabs) {
  const auto slab =
      static_cast<std::size_t>((point.x - sampleOrigin[0]) / sampleSize[0] * static_cast<double>(slabs));
  return std::min(slab, slabs - 1);
}

/// The points of a group in the order of flight, strips running east, and the times that go with it.
void fly(std::vector<SamplePoint>& points) {
  constexpr double speed = 50;
  constexpr double stripSeconds = 60;
  constexpr double start = 350'000'000;
  std::stable_sort(points.begin(), points.end(),
                   [](const SamplePoint& a, const SamplePoint& b) { return a.x < b.x; });
  for (SamplePoint& point : points)
    point.gpsTime = start + stripOf(point) * stripSeconds + (point.x - sampleOrigin[0]) / speed;
}

void addNumber(std::uint64_t number, std::vector<std::uint8_t>& bytes) {
  for (; number >= 0x80; number >>= 7) bytes.push_back(static_cast<std::uint8_t>(number | 0x80));
  bytes.push_back(static_cast<std::uint8_t>(number));
}

/// A fan over the whole basin. A point of the unit circle for t from 0 to 1 is ((1 - t^2) / (1 + t^2),
/// 2t / (1 + t^2)), a quarter of it, which needs no sines.
Mesh makeWater() {
  constexpr std::uint32_t perQuarter = 16;
  const double x = sampleOrigin[0] + basin.x;
  const double y = sampleOrigin[1] + basin.y;
  Mesh mesh;
  mesh.vertices.push_back({x, y, sampleWaterLevel});
  for (std::uint32_t i = 0; i < 4 * perQuarter; ++i) {
    const double t = static_cast<double>(i % perQuarter) / perQuarter;
    double c = (1 - t * t) / (1 + t * t);
    double s = 2 * t / (1 + t * t);
    for (std::uint32_t quarter = 0; quarter < i / perQuarter; ++quarter) {
      const double turned = -s;
      s = c;
      c = turned;
    }
    mesh.vertices.push_back({x + c * basin.rx, y + s * basin.ry, sampleWaterLevel});
  }
  for (std::uint32_t i = 1; i <= 4 * perQuarter; ++i)
    mesh.triangles.push_back({0, i, i % (4 * perQuarter) + 1});
  return mesh;
}

} // namespace

SampleScene makeSampleScene(std::uint64_t points, std::uint64_t seed) {
  // large enough that two bytes hold most of their draws, small enough to be made by each thread
  constexpr std::uint64_t pointsOfGroup = 32768;
  constexpr std::uint64_t mostSlabs = 120;
  const auto slabs =
      static_cast<std::size_t>(std::clamp<std::uint64_t>(points / (strips * pointsOfGroup), 1, mostSlabs));
  SampleScene scene;
  scene.seed_ = seed;
  scene.water_ = makeWater();
  scene.draws_.resize(strips * slabs);
  scene.starts_.resize(strips * slabs + 1);
  std::vector<std::uint64_t> drawn(strips * slabs);
  SampleMaker maker(seed);
  for (std::uint64_t i = 0; i < points; ++i) {
    const std::uint64_t before = maker.random().drawn();
    const SamplePoint point = maker.next();
    const std::size_t group = static_cast<std::size_t>(stripOf(point)) * slabs + slabOf(point, slabs);
    addNumber(before - drawn[group], scene.draws_[group]);
    drawn[group] = before;
    ++scene.starts_[group + 1];
  }
  std::partial_sum(scene.starts_.begin(), scene.starts_.end(), scene.starts_.begin());
  return scene;
}

SampleScene::Reader::Reader(const SampleScene& scene)
    : scene_(scene), maker_(std::make_unique<SampleMaker>(scene.seed_)) {}

SampleScene::Reader::~Reader() = default;
SampleScene::Reader::Reader(Reader&&) noexcept = default;

const SamplePoint& SampleScene::Reader::at(std::uint64_t point) {
  if (point < first_ || point - first_ >= points_.size())
    makeGroup(
        static_cast<std::size_t>(std::ranges::upper_bound(scene_.starts_, point) - scene_.starts_.begin()) -
        1);
  return points_[static_cast<std::size_t>(point - first_)];
}

void SampleScene::Reader::makeGroup(std::size_t group) {
  first_ = scene_.starts_[group];
  points_.clear();
  std::uint64_t drawn = 0;
  std::uint64_t number = 0;
  unsigned shift = 0;
  for (const std::uint8_t byte : scene_.draws_[group]) {
    number |= std::uint64_t{byte & 0x7FU} << shift;
    shift += 7;
    if (byte >= 0x80) continue;
    drawn += std::exchange(number, 0);
    shift = 0;
    maker_->random().goTo(drawn);
    points_.push_back(maker_->next());
  }
  fly(points_);
}

} // namespace Zamt::Host
