#include "host/surfaces/SurfaceFile.h"

#include "files/writeWholeFile.h"
#include "host/surfaces/MeshParsers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <fstream>
#include <optional>
#include <span>
#include <system_error>

namespace Zamt::Host {

namespace {

enum class MeshFormat : std::uint8_t { Ply, Obj, TextStl, BinaryStl };

std::string sentence(const std::string& path, const std::string& what) {
  return "The surface \"" + path + "\" can't be used: " + what + ". Export it again as PLY, OBJ or STL.";
}

std::string crowded(const std::string& path, std::size_t crowding) {
  return "The surface \"" + path + "\" can't be used: " + std::to_string(crowding) +
         " of its triangles lie over one place or meet in one corner, and each point there would be held "
         "against "
         "them all; " +
         std::to_string(maxSurfaceCrowding) +
         " are the most. Leave sheets out, or cut faces of many corners into triangles of their own.";
}

/// Whether the first word of a line that is no comment is one that OBJ files begin with.
bool beginsAsObj(std::string_view bytes) {
  constexpr std::array<std::string_view, 9> words{"v", "vn", "vt", "f", "o", "g", "s", "mtllib", "usemtl"};
  while (!bytes.empty()) {
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
    line.remove_prefix(std::min(line.find_first_not_of(" \t\r"), line.size()));
    if (line.empty() || line[0] == '#') continue;
    const std::string_view word = line.substr(0, line.find_first_of(" \t\r"));
    return std::find(words.begin(), words.end(), word) != words.end();
  }
  return false;
}

std::optional<MeshFormat> formatOf(std::string_view bytes, const std::string& path) {
  if (bytes.starts_with("ply\n") || bytes.starts_with("ply\r")) return MeshFormat::Ply;
  if (isBinaryStl(bytes)) return MeshFormat::BinaryStl;
  if (bytes.starts_with("solid")) return MeshFormat::TextStl;
  if (beginsAsObj(bytes)) return MeshFormat::Obj;
  std::string ending = std::filesystem::path(path).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  if (ending == ".ply") return MeshFormat::Ply;
  if (ending == ".obj") return MeshFormat::Obj;
  if (ending == ".stl") return MeshFormat::BinaryStl;
  return std::nullopt;
}

std::string parseAs(MeshFormat format, std::string_view bytes, Mesh& mesh) {
  switch (format) {
  case MeshFormat::Ply: return parsePly(bytes, mesh);
  case MeshFormat::Obj: return parseObj(bytes, mesh);
  case MeshFormat::TextStl: return parseTextStl(bytes, mesh);
  case MeshFormat::BinaryStl: return parseBinaryStl(bytes, mesh);
  }
  return {};
}

std::string faultOf(const Mesh& mesh) {
  if (mesh.triangles.empty()) return "it has no triangles";
  if (mesh.triangles.size() > maxSurfaceTriangles)
    return "it has more than " + std::to_string(maxSurfaceTriangles) + " triangles";
  const bool sound = std::all_of(mesh.triangles.begin(), mesh.triangles.end(), [&](const auto& corners) {
    return std::all_of(corners.begin(), corners.end(),
                       [&](auto corner) { return corner < mesh.vertices.size(); });
  });
  return sound ? std::string() : "one of its faces names a vertex that it does not have";
}

template <typename Number>
void append(std::string& bytes, Number value) {
  std::array<char, sizeof(Number)> raw;
  std::memcpy(raw.data(), &value, sizeof value);
  if constexpr (std::endian::native == std::endian::big) std::reverse(raw.begin(), raw.end());
  bytes.append(raw.data(), raw.size());
}

} // namespace

bool parseMesh(std::string_view bytes, const std::string& path, Mesh& mesh, std::string& problem) {
  mesh = {};
  const auto format = formatOf(bytes, path);
  std::string fault = format ? parseAs(*format, bytes, mesh) : "it is neither PLY nor OBJ nor STL";
  if (fault.empty()) fault = faultOf(mesh);
  if (fault.empty()) return true;
  problem = sentence(path, fault);
  return false;
}

bool readMesh(const std::string& path, Mesh& mesh, std::string& problem) {
  std::error_code error;
  const std::uintmax_t size =
      std::filesystem::is_regular_file(path, error) ? std::filesystem::file_size(path, error) : 0;
  std::ifstream file(path, std::ios::binary);
  if (error || size == 0 || !file) {
    problem = "The surface \"" + path + "\" can't be read: " +
              (error               ? error.message()
               : file && size == 0 ? "it is empty or no plain file"
                                   : "it can't be opened") +
              ". Check its name and that it may be read.";
    return false;
  }
  std::string bytes(static_cast<std::size_t>(size), '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return parseMesh(bytes, path, mesh, problem);
}

bool writePly(const std::string& path, const Mesh& mesh, std::string& problem) {
  std::string bytes =
      "ply\nformat binary_little_endian 1.0\nelement vertex " + std::to_string(mesh.vertices.size()) +
      "\nproperty double x\nproperty double y\nproperty double z\nelement face " +
      std::to_string(mesh.triangles.size()) + "\nproperty list uchar uint vertex_indices\nend_header\n";
  for (const auto& vertex : mesh.vertices)
    for (const double value : vertex) append(bytes, value);
  for (const auto& corners : mesh.triangles) {
    append(bytes, std::uint8_t{3});
    for (const std::uint32_t corner : corners) append(bytes, corner);
  }
  return writeWholeFile(path, std::as_bytes(std::span(bytes)), problem);
}

std::shared_ptr<const Surface> SurfaceCache::load(const std::string& path, std::string& problem) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  const auto changed =
      error ? std::filesystem::file_time_type() : std::filesystem::last_write_time(path, error);
  const auto known = entries_.find(path);
  if (!error && known != entries_.end() && known->second.size == size && known->second.changed == changed)
    return known->second.surface;
  Mesh mesh;
  if (!readMesh(path, mesh, problem)) return nullptr;
  auto surface = std::make_shared<const Surface>(mesh);
  if (surface->size() == 0) {
    problem = sentence(path, "none of its triangles covers an area in plan");
    return nullptr;
  }
  if (surface->crowding() > maxSurfaceCrowding) {
    problem = crowded(path, surface->crowding());
    return nullptr;
  }
  entries_[path] = {size, changed, surface};
  return surface;
}

} // namespace Zamt::Host
