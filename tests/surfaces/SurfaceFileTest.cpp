#include "host/surfaces/SurfaceFile.h"

#include "tests/support/TemporaryDirectory.h"
#include "tests/support/goldenCases.h"

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

/// The vertices and the triangles, or what is wrong.
std::string outcomeOf(const std::string& bytes, const std::string& name) {
  Mesh mesh;
  std::string problem;
  if (!parseMesh(bytes, name, mesh, problem)) return problem;
  std::ostringstream text;
  text.precision(10);
  for (const auto& [x, y, z] : mesh.vertices) text << x << ' ' << y << ' ' << z << '\n';
  for (const auto& [a, b, c] : mesh.triangles) text << "triangle " << a << ' ' << b << ' ' << c << '\n';
  return text.str();
}

TEST(SurfaceFile, ReadsOrRefusesFilesOfTextAsInTheGoldenDocument) {
  Testing::expectCases("surfaces/golden/files.md", [](const std::string& nameAndBytes) {
    const std::size_t lineEnd = nameAndBytes.find('\n');
    return outcomeOf(nameAndBytes.substr(lineEnd + 1), nameAndBytes.substr(0, lineEnd));
  });
}

TEST(SurfaceFile, BinaryPlyReadsAlikeInEitherOrder) {
  for (const bool big : {false, true})
    EXPECT_EQ(outcomeOf(binaryPly(big), "a.bin"), "447455.577 0 2.5\n447456.577 0 2.5\n447456.577 1 2.5\n"
                                                  "447455.577 1 2.5\ntriangle 0 1 2\ntriangle 0 2 3\n");
}

TEST(SurfaceFile, BinaryStlIsToldFromTextByItsLength) {
  std::string bytes = "solid but binary";
  bytes.resize(80, ' ');
  bytes += raw(std::uint32_t{1});
  for (int i = 0; i < 12; ++i) bytes += raw(static_cast<float>(i * i));
  bytes += raw(std::uint16_t{0});
  EXPECT_EQ(outcomeOf(bytes, "a.stl"), "9 16 25\n36 49 64\n81 100 121\ntriangle 0 1 2\n");
}

TEST(SurfaceFile, BinaryFilesAnnounceNoMoreThanTheyHave) {
  const std::string face = "ply\nformat binary_little_endian 1.0\nelement face ";
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"a.ply", face + "1\nproperty list uint int vertex_indices\nend_header\n\xFF\xFF\xFF\x7F" + "1234",
       "a list in it announces a length that it has no bytes for"},
      {"a.ply", face + "2\nproperty list uchar int vertex_indices\nend_header\n\x01" + "1234",
       "it ends before everything that its header announces was there"},
      {"a.STL", std::string(80, ' ') + "\xFF\xFF\xFF\xFF",
       "it announces 4294967295 triangles, more than it has bytes for"}};
  for (const auto& [name, bytes, problem] : cases)
    EXPECT_EQ(outcomeOf(bytes, name), "The surface \"" + name + "\" can't be used: " + problem +
                                          ". Export it again as PLY, OBJ or STL.");
}

TEST(SurfaceFile, EveryCutAndFlippedFileEndsInAnAnswer) {
  const std::string textPly =
      "ply\nformat ascii 1.0\nelement vertex 4\nproperty double x\nproperty double y\n"
      "property double z\nelement face 1\nproperty list uchar int vertex_indices\n"
      "end_header\n0 0 2.5\n+1 0 2.5\n1 1 25e-1\n\n0 1 2.5\n4 0 1 2 3\n";
  for (const std::string& whole : {binaryPly(false), textPly})
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
