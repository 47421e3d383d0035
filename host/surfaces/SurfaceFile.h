#pragma once

#include "host/surfaces/Surface.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace Zamt::Host {

/// Reads a triangle mesh from the bytes of a PLY (text, or binary of either byte order), OBJ or STL (text or
/// binary) file. What the bytes are is told by themselves, and only in doubt by the ending of `path`.
/// Polygons are cut into fans. False when the bytes can't be used, with a sentence in `problem` that names
/// `path`. Memory stays in proportion to the bytes, whatever counts they claim.
bool parseMesh(std::string_view bytes, const std::string& path, Mesh& mesh, std::string& problem);

/// Reads the file at `path` as `parseMesh` does.
bool readMesh(const std::string& path, Mesh& mesh, std::string& problem);

/// Writes a binary little-endian PLY with double coordinates, atomically: on failure, with a sentence in
/// `problem`, what was at `path` stays.
bool writePly(const std::string& path, const Mesh& mesh, std::string& problem);

/// A surface with more triangles than this (see `Surface::crowding`) is refused: that many already take a
/// point as long as a hundred surfaces would. Surfaces of the ground have a few dozen.
inline constexpr std::size_t maxSurfaceCrowding = 10'000;

/// The surfaces of one host, each read once for as long as its file stays the same. Not for several threads
/// at once; the surfaces themselves are.
class SurfaceCache {
public:
  /// The surface of the file at `path`; null when it can't be used, with a sentence in `problem`.
  std::shared_ptr<const Surface> load(const std::string& path, std::string& problem);

private:
  struct Entry {
    std::uintmax_t size = 0;
    std::filesystem::file_time_type changed;
    std::shared_ptr<const Surface> surface;
  };
  std::map<std::string, Entry> entries_;
};

} // namespace Zamt::Host
