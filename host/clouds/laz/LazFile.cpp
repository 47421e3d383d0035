#include "host/clouds/laz/LazFile.h"

#include "host/clouds/laz/PointLayers.h"

#include <algorithm>

namespace Zamt::Host {

namespace {

/// How many EVLRs the header says there are.
std::uint32_t countOfEvlrs(const LasFile& file) {
  const bool has = file.layout.versionMinor >= 4 && file.layout.headerSize >= headerOf14;
  return has ? readAt<std::uint32_t>(&file.bytes()[HeaderAt::evlrCount]) : 0;
}

} // namespace

Compression LazFile::compression() const {
  Compression all;
  all.compressor =
      std::string(copc ? "COPC" : "LAZ") + (coding.isLayered() ? ", layered" : ", point by point");
  all.chunks = chunks.chunks.size();
  for (std::size_t layer = 0; layer < coding.layerCount(); ++layer)
    if (const std::string name = Laz::layerName(layer, coding);
        all.layers.empty() || all.layers.back().name != name)
      all.layers.push_back({name, 0});
  for (std::size_t number = 0; number < chunks.chunks.size(); ++number) {
    all.bytes += chunks.chunks[number].size;
    Laz::LayeredChunk head;
    if (!coding.isLayered() || !Laz::readLayeredChunk(coding, chunk(number), head)) continue;
    for (std::size_t layer = 0; layer < head.layers.size(); ++layer)
      all.layers[std::min(layer, all.layers.size() - 1)].bytes += head.layers[layer].size();
  }
  return all;
}

std::size_t LazFile::keptFrom() const {
  if (chunks.fromTable) return static_cast<std::size_t>(chunks.end);
  const auto first = std::ranges::find(layout.records, true, &LasRecord::extended);
  const bool isWhole = first != layout.records.end() && layout.records.end() - first == countOfEvlrs(*this);
  return isWhole ? first->head : bytes().size();
}

void LazFile::uncountLostRecords(LasEdits& edits) const {
  if (!chunks.fromTable && keptFrom() == bytes().size() && countOfEvlrs(*this) != 0)
    replaceNumber(edits, HeaderAt::evlrCount, std::uint32_t{0});
}

} // namespace Zamt::Host
