#pragma once

#include "host/clouds/laz/LazFormat.h"
#include "host/clouds/laz/RangeDecoder.h"
#include "host/clouds/laz/RangeEncoder.h"
#include "host/clouds/laz/ReturnLayer.h"
#include "host/clouds/laz/layers.h"

#include <optional>
#include <string>
#include <vector>

// A chunk of points of formats 6 to 10:
//
//   the first point, as the record stores it
//   u32 number of points, the first one included
//   u32 bytes of each layer
//   the layers, each a stream of its own
//
// A layer without bytes says that all points have the value of the first one. The core of a point has nine
// layers (`PointLayers` has their order); colour, infrared, wave packet and each extra byte have one.

namespace Zamt::Host::Laz {

inline constexpr std::size_t returnLayer = 0;
inline constexpr std::size_t classLayer = 2;
inline constexpr std::size_t firstItemLayer = 9;
inline constexpr std::size_t firstItemPart =
    11; ///< Of LazFormat::parts, which the layers from there on follow.

/// The head of a chunk.
struct LayeredChunk {
  std::uint32_t points = 0;
  std::vector<std::span<const std::byte>> layers;
  std::size_t size = 0; ///< All bytes up to the end of the last layer.
};

/// Reads the head of the chunk that these bytes start with. False when it does not lie within them.
bool readLayeredChunk(const LazFormat& format, std::span<const std::byte> bytes, LayeredChunk& chunk);

/// What a layer holds: "classes". All extra bytes have the same name.
std::string layerName(std::size_t layer, const LazFormat& format);

/// The coders of all layers of a point.
template <class Coder>
class PointLayers {
public:
  explicit PointLayers(const LazFormat& format) {
    for (const LazItem& item : format.items) add(item);
  }

  /// Calls `visit(layer number, part number, coder of the layer)` for all layers but the first, in their
  /// order.
  template <class Visit>
  void each(Visit visit) {
    visit(1, 2, z_);
    visit(classLayer, 6, classes_);
    visit(3, 5, flags_);
    visit(4, 3, intensities_);
    visit(5, 8, angles_);
    visit(6, 7, users_);
    visit(7, 9, sources_);
    visit(8, 10, times_);
    std::size_t layer = firstItemLayer;
    const auto visitItem = [&](auto& item) {
      visit(layer, layer - firstItemLayer + firstItemPart, item);
      ++layer;
    };
    if (colours_) visitItem(*colours_);
    if (infrareds_) visitItem(*infrareds_);
    if (packets_) visitItem(*packets_);
    for (auto& bytes : extraBytes_) visitItem(bytes);
  }

  ReturnLayer<Coder> returns;
  bool hasOddChannels = false; ///< Items behind the core are of version 3 or older.

private:
  void add(const LazItem& item) {
    if (item.type == LazItemType::Point14) {
      hasOddChannels = item.version <= 3;
      return;
    }
    if (item.type == LazItemType::Bytes14) {
      extraBytes_.resize(item.size);
    } else if (item.type == LazItemType::WavePacket14) {
      packets_.emplace();
    } else {
      colours_.emplace();
      if (item.type == LazItemType::ColourInfrared14) infrareds_.emplace();
    }
  }

  ChannelLayer<Coder, ZLayer<Coder>> z_;
  ChannelLayer<Coder, ClassLayer<Coder>> classes_;
  ChannelLayer<Coder, FlagLayer<Coder>> flags_;
  ChannelLayer<Coder, IntensityLayer<Coder>> intensities_;
  ChannelLayer<Coder, AngleLayer<Coder>> angles_;
  ChannelLayer<Coder, UserLayer<Coder>> users_;
  ChannelLayer<Coder, SourceLayer<Coder>> sources_;
  ChannelLayer<Coder, TimeLayer<Coder>> times_;
  std::optional<ItemLayer<Coder, ColourCoder<Coder>, Colour>> colours_;
  std::optional<ItemLayer<Coder, InfraredCoder<Coder>, std::uint16_t>> infrareds_;
  std::optional<ItemLayer<Coder, WavePacketCoder<Coder>, WavePacket>> packets_;
  std::vector<ItemLayer<Coder, ExtraByteCoder<Coder>, std::uint8_t>> extraBytes_;
};

} // namespace Zamt::Host::Laz
