#pragma once

#include <cstdint>

namespace Zamt::Host::Laz {

/// What the first layer says of a point to the layers behind it, in 16 bits:
///
///   0-1   the place among the returns, 3 for a single one      8-12  context of Z
///   2     the GPS time differs from the last of the channel    13    the scan angle does
///   3-5   |n - r|, at most 7                                   14    the point source does
///   6-7   scanner channel                                      15    the channel differs from that of the
///                                                                    point before
///
/// The lower byte is all that the layer of classes needs.
using PointContext = std::uint16_t;

inline unsigned placeOf(unsigned context) { return context & 3; }
inline unsigned timeDiffers(unsigned context) { return context >> 2 & 1; }
inline unsigned levelOf(unsigned context) { return context >> 3 & 7; }
inline unsigned channelOf(unsigned context) { return context >> 6 & 3; }
inline unsigned contextOfZ(PointContext context) { return context >> 8 & 31; }
inline bool angleDiffers(unsigned context) { return context >> 13 & 1; }
inline bool sourceDiffers(unsigned context) { return context >> 14 & 1; }
inline bool channelDiffers(unsigned context) { return context >> 15 & 1; }

} // namespace Zamt::Host::Laz
