#pragma once

#include "host/surfaces/HeightModel.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Zamt::Host {

/// A triangulated surface as its file holds it, in world units.
struct Mesh {
  std::vector<std::array<double, 3>> vertices;
  std::vector<std::array<std::uint32_t, 3>> triangles; ///< Positions in `vertices`.
};

/// More triangles than this are refused: positions in the search index have 32 bits, and a triangle takes up
/// to `Surface::cellsPerSide` squared of them.
inline constexpr std::size_t maxSurfaceTriangles = 100'000'000;

/// A surface made ready for vertical distances. It may have several sheets and walls; a triangle without an
/// area in plan bears no height and is left out, and so is one with a vertex that is not a usable number.
/// Never changes once made, so any number of threads may ask at once.
class Surface : public HeightModel {
public:
  /// How many cells of its level a triangle reaches over in one direction, at most.
  static constexpr unsigned cellsPerSide = 5;

  Surface() = default;

  /// `mesh.triangles` name vertices that exist and are at most `maxSurfaceTriangles`.
  explicit Surface(const Mesh& mesh);

  /// z minus the height of the sheet nearest in height over or under the point, in world units; NaN where the
  /// surface does not reach. Edges and vertices belong to the triangles on either side.
  double verticalDistance(double x, double y, double z) const;

  /// The same for many points at once, one for each place of `out`. The index is asked ahead of its use, so
  /// that points in no order at all don't wait for memory one after the other.
  void verticalDistances(std::span<const double> x, std::span<const double> y, std::span<const double> z,
                         std::span<double> out) const override;

  /// How many triangles a point is held against where they crowd most: over one another, or around one
  /// corner.
  std::size_t crowding() const { return crowding_; }

  /// How many triangles bear a height.
  std::size_t size() const { return triangles_.size(); }

  /// The surface's box in plan: lowest x and y, highest x and y. Only for surfaces that are not empty.
  const std::array<double, 4>& planBounds() const override { return bounds_; }

private:
  /// Corners sorted by x, then y: an edge shared by two triangles then runs the same way in both, so that
  /// both see the very same number on it and no point falls between them.
  struct Triangle {
    double ax, ay, az, bx, by, bz, cx, cy, cz;
  };

  /// A grid of square cells for triangles of alike size. Where the cells are too many for a table, they share
  /// places in it: a place then holds triangles of other cells too, which the exact test refuses.
  struct Level {
    double cell = 1;
    double perCell = 1;
    std::uint64_t columns = 1;
    std::uint64_t rows = 1;
    std::uint64_t places = 1;
    std::size_t firstPlace = 0;
    bool shared = false;

    std::uint64_t placeOf(std::uint64_t column, std::uint64_t row) const;
  };

  bool addTriangle(const Mesh& mesh, const std::array<std::uint32_t, 3>& corners);
  void buildIndex();
  void makeLevels(std::span<const std::uint8_t> levelOf, std::span<const double> cellSizes);
  template <typename Visit>
  void visitCells(const Triangle& triangle, const Level& level, Visit&& visit) const;
  std::size_t fullestPlace(const Level& level) const;
  std::uint64_t placeAt(const Level& level, double x, double y) const;
  void searchPlace(std::uint64_t place, double x, double y, double z, double& best) const;
  bool heightAt(const Triangle& triangle, double x, double y, double& height) const;

  std::vector<Triangle> triangles_;
  std::vector<Level> levels_;
  std::vector<std::uint32_t> placeStarts_; ///< For each place of each level, where its entries begin.
  std::vector<std::uint32_t> entries_;     ///< Positions in `triangles_`.
  std::size_t crowding_ = 0;
  std::array<double, 4> bounds_{};
  double rounding_ = 0; ///< How far apart two spellings of one coordinate may lie.
};

} // namespace Zamt::Host
