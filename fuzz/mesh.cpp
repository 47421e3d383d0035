#include "fuzz/require.h"
#include "host/surfaces/Surface.h"
#include "host/surfaces/SurfaceFile.h"

#include <cstdint>

using namespace Zamt::Host;
using Zamt::Fuzz::require;
using Zamt::Fuzz::requireSentence;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const char* name : {"mesh.ply", "mesh.obj", "mesh.stl"}) {
    Mesh mesh;
    std::string problem;
    if (!parseMesh({reinterpret_cast<const char*>(data), size}, name, mesh, problem)) {
      requireSentence(problem);
      continue;
    }
    for (const auto& corners : mesh.triangles)
      for (const std::uint32_t corner : corners)
        require(corner < mesh.vertices.size(), "triangles name vertices that exist");
    const Surface surface(mesh);
    for (const auto& vertex : mesh.vertices) surface.verticalDistance(vertex[0], vertex[1], vertex[2]);
  }
  return 0;
}
