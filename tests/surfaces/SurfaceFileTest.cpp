#include "host/surfaces/SurfaceFile.h"

#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Zamt::Host {
namespace {

template <typename Number>
std::string raw(Number value, bool big = false) {
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  if (big) std::reverse(bytes.begin(), bytes.end());
  return bytes;
}

std::string binaryPly(bool big) {
  std::string bytes = std::string("ply\r\nformat binary_") + (big ? "big" : "little") +
                      "_endian 1.0\r\ncomment made by hand\r\nelement vertex 4\r\nproperty uchar mark\r\n"
                      "property double x\r\nproperty double y\r\nproperty float z\r\nelement face 1\r\n"
                      "property list uchar int vertex_index\r\nproperty short tone\r\nend_header\r\n";
  const double corners[4][2] = {{447455.577, 0}, {447456.577, 0}, {447456.577, 1}, {447455.577, 1}};
  for (const auto& corner : corners)
    bytes += raw(std::uint8_t{7}) + raw(corner[0], big) + raw(corner[1], big) + raw(2.5F, big);
  bytes += raw(std::uint8_t{4});
  for (int i = 0; i < 4; ++i) bytes += raw(std::int32_t{i}, big);
  return bytes + raw(std::int16_t{1}, big);
}

constexpr const char* textPly =
    "ply\nformat ascii 1.0\nelement vertex 4\nproperty double x\nproperty double y\n"
    "property double z\nelement face 1\nproperty list uchar int vertex_indices\n"
    "end_header\n447455.577 0 2.5\n+447456.577 0 2.5\n447456.577 1 25e-1\n\n"
    "447455.577 1 2.5\n4 0 1 2 3\n";

TEST(SurfaceFile, EveryFormatOfTheSameQuadReadsAlike) {
  const std::pair<const char*, std::string> cases[] = {
      {"a.ply", textPly},
      {"little.bin", binaryPly(false)},
      {"big.bin", binaryPly(true)},
      {"a.obj",
       "# quad\r\nmtllib a.mtl\r\nv 447455.577 0 2.5\r\nv 447456.577 0 2.5 1\r\n\tv 447456.577 1 2.5\r\n"
       "v +447455.577 1 2.5\r\nvn 0 0 1\r\nf 1//1 2//1 3/1/1 4 # all\r\n"},
      {"unknown",
       "v 447455.577 0 2.5\nv 447456.577 0 2.5\nv 447456.577 1 2.5\nv 447455.577 1 2.5\nf -4 -3 \\\n-2 -1"},
      {"a.stl",
       "solid quad\n facet normal 0 0 1\n  outer loop\n   vertex 447455.577 0 2.5\n   vertex 447456.577 0 "
       "2.5\n   vertex 447456.577 1 2.5\n   vertex 447455.577 1 2.5\n  endloop\n endfacet\nendsolid quad\n"},
  };
  using Vec = std::array<double, 3>;
  const std::vector<Vec> corners{{447455.577, 0, 2.5}, {447456.577, 0, 2.5}, {447456.577, 1, 2.5},
                                 {447455.577, 0, 2.5}, {447456.577, 1, 2.5}, {447455.577, 1, 2.5}};
  for (const auto& [name, bytes] : cases) {
    Mesh mesh;
    std::string problem;
    ASSERT_TRUE(parseMesh(bytes, name, mesh, problem)) << problem;
    std::vector<Vec> read;
    for (const auto& triangle : mesh.triangles)
      for (const std::uint32_t vertex : triangle) read.push_back(mesh.vertices[vertex]);
    EXPECT_EQ(read, corners) << name;
    EXPECT_EQ(mesh.vertices.size(), 4U) << name;
  }
}

TEST(SurfaceFile, BinaryStlIsToldFromTextByItsLength) {
  std::string bytes = "solid but binary";
  bytes.resize(80, ' ');
  bytes += raw(std::uint32_t{1});
  for (int i = 0; i < 12; ++i) bytes += raw(static_cast<float>(i * i));
  bytes += raw(std::uint16_t{0});
  Mesh mesh;
  std::string problem;
  ASSERT_TRUE(parseMesh(bytes, "a.stl", mesh, problem)) << problem;
  EXPECT_EQ(mesh.vertices[2], (std::array<double, 3>{81, 100, 121}));
}

struct Broken {
  const char* name;
  std::string bytes;
  const char* problem; ///< Between the path and the advice.
};

TEST(SurfaceFile, SaysWhatIsWrongWithAFile) {
  const std::string head = "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\n";
  const std::string binary = "ply\nformat binary_little_endian 1.0\nelement ";
  const Broken cases[] = {
      {"a.txt", "hello", "it is neither PLY nor OBJ nor STL"},
      {"a.ply", "ply\n", "its header has no end"},
      {"a.ply", "ply\nend_header\n", "its header names no format"},
      {"a.ply", "ply\nformat ascii2 1.0\n", "line 2 names the unknown format \"ascii2\""},
      {"a.ply", "ply\nproperty float x\n", "line 2 has a property that belongs to no element"},
      {"a.ply", "ply\nelement vertex 1\nproperty real x\n", "line 3 has the unknown type \"real\""},
      {"a.ply", head + "end_header\n1 2\n", "its vertices have no z"},
      {"a.ply", head + "property float z\nend_header\n1 2\n", "line 8 ends where a number belongs"},
      {"a.ply", head + "property float z\nend_header\n1 2 z\n", "line 8 has \"z\" where a number belongs"},
      {"a.ply", binary + "vertex 18446744073709551615\nproperty float x\nend_header\n1234",
       "it announces 18446744073709551615 of the element \"vertex\", more than it has bytes for"},
      {"a.ply",
       binary + "face 1\nproperty list uint int vertex_indices\nend_header\n\xFF\xFF\xFF\x7F"
                "1234",
       "a list in it announces a length that it has no bytes for"},
      {"a.ply",
       binary + "face 2\nproperty list uchar int vertex_indices\nend_header\n\x01"
                "1234",
       "it ends before everything that its header announces was there"},
      {"a.obj", "v 1 2 x\n", "line 1 has \"x\" where a number belongs"},
      {"a.obj", "v 1 2 3\nf 1 0 1\n", "line 2 has \"0\" where the number of a vertex belongs"},
      {"a.obj", "v 1 2 3\nf 1 1 -2\n", "one of its faces names a vertex that it does not have"},
      {"a.obj", "v 1 2 3\n", "it has no triangles"},
      {"a.stl", "solid x\nfacet\n", "it ends before its \"endsolid\""},
      {"a.stl", "short", "it is shorter than the head of a binary STL file"},
      {"a.STL", std::string(80, ' ') + "\xFF\xFF\xFF\xFF",
       "it announces 4294967295 triangles, more than it has bytes for"},
  };
  for (const Broken& one : cases) {
    Mesh mesh;
    std::string problem;
    EXPECT_FALSE(parseMesh(one.bytes, one.name, mesh, problem)) << one.problem;
    EXPECT_EQ(problem, std::string("The surface \"") + one.name + "\" can't be used: " + one.problem +
                           ". Export it again as PLY, OBJ or STL.");
  }
}

TEST(SurfaceFile, EveryCutAndFlippedFileEndsInAnAnswer) {
  for (const std::string& whole : {binaryPly(false), std::string(textPly)})
    for (std::size_t i = 0; i < whole.size(); ++i)
      for (const bool cut : {true, false}) {
        std::string bytes = cut ? whole.substr(0, i) : whole;
        if (!cut) bytes[i] = static_cast<char>(~bytes[i]);
        Mesh mesh;
        std::string problem;
        const bool read = parseMesh(bytes, "a.ply", mesh, problem);
        EXPECT_NE(read, !problem.empty());
        EXPECT_TRUE(!read || Surface(mesh).size() <= mesh.triangles.size());
      }
}

TEST(SurfaceCache, ReadsAFileOnceUntilItChanges) {
  const Testing::TemporaryDirectory directory;
  const std::string path = directory.path("a.ply");
  Mesh mesh{{{0, 0, 1}, {1, 0, 1}, {0, 1, 1}}, {{0, 1, 2}}};
  std::string problem;
  ASSERT_TRUE(writePly(path, mesh, problem)) << problem;
  SurfaceCache cache;
  const auto first = cache.load(path, problem);
  ASSERT_TRUE(first) << problem;
  EXPECT_EQ(first->verticalDistance(0.25, 0.25, 3), 2);
  EXPECT_EQ(cache.load(path, problem), first);
  mesh.vertices.push_back({1, 1, 1});
  mesh.triangles.push_back({1, 2, 3});
  ASSERT_TRUE(writePly(path, mesh, problem)) << problem;
  const auto second = cache.load(path, problem);
  ASSERT_TRUE(second) << problem;
  EXPECT_EQ(second->size(), 2U);
  std::filesystem::remove(path);
  EXPECT_EQ(cache.load(path, problem), nullptr);
  EXPECT_NE(problem, "");
  EXPECT_FALSE(writePly(directory.path("no/a.ply"), mesh, problem));
}

TEST(SurfaceCache, RefusesTrianglesThatCrowdInOnePlace) {
  const Testing::TemporaryDirectory directory;
  const std::string path = directory.path("a.ply");
  const std::size_t most = maxSurfaceCrowding;
  for (const bool sheets : {true, false})
    for (const std::size_t count : {most, most + 1}) {
      Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {}};
      for (std::size_t i = 0; i < count; ++i) {
        const auto first = static_cast<std::uint32_t>(mesh.vertices.size());
        const double angle = 1.5 * static_cast<double>(i) / static_cast<double>(count);
        if (!sheets) mesh.vertices.push_back({std::cos(angle), std::sin(angle), 0});
        if (!sheets) mesh.vertices.push_back({std::cos(angle + 1e-4), std::sin(angle + 1e-4), 0});
        mesh.triangles.push_back(sheets ? std::array<std::uint32_t, 3>{0, 1, 2}
                                        : std::array<std::uint32_t, 3>{0, first, first + 1});
      }
      std::string problem;
      ASSERT_TRUE(writePly(path, mesh, problem)) << problem;
      EXPECT_EQ(SurfaceCache().load(path, problem) != nullptr, count == most) << problem;
    }
}

} // namespace
} // namespace Zamt::Host
