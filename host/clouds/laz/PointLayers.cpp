#include "host/clouds/laz/PointLayers.h"

#include <array>

namespace Zamt::Host::Laz {

bool readLayeredChunk(const LazFormat& format, std::span<const std::byte> bytes, LayeredChunk& chunk) {
  const std::size_t layers = format.layerCount();
  std::size_t at = format.recordLength;
  if (bytes.size() < at + 4 * (1 + layers)) return false;
  chunk.points = load<std::uint32_t>(&bytes[at]);
  const std::byte* const sizes = &bytes[at + 4];
  at += 4 * (1 + layers);
  chunk.layers.clear();
  for (std::size_t layer = 0; layer < layers; ++layer) {
    const auto size = load<std::uint32_t>(sizes + 4 * layer);
    if (size > bytes.size() - at) return false;
    chunk.layers.push_back(bytes.subspan(at, size));
    at += size;
  }
  chunk.size = at;
  return true;
}

std::string layerName(std::size_t layer, const LazFormat& format) {
  constexpr std::array<const char*, firstItemLayer> names{"returns",   "heights",       "classes",
                                                          "flags",     "intensities",   "angles",
                                                          "user data", "point sources", "GPS times"};
  if (layer < firstItemLayer) return names[layer];
  switch (format.parts[layer - firstItemLayer + firstItemPart].kind) {
  case LazPartKind::Colour: return "colours";
  case LazPartKind::Infrared: return "infrared";
  case LazPartKind::WavePacket: return "wave packets";
  default: return "extra bytes";
  }
}

} // namespace Zamt::Host::Laz
