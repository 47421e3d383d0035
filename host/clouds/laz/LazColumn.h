#pragma once

#include "host/clouds/laz/LazFormat.h"

namespace Zamt::Host {

/// Where the values of one part of the points lie: those of point i at `at + i * stride`, aligned or not. So
/// both an array by itself and a field of whole point records are columns.
struct LazColumn {
  std::byte* at = nullptr; ///< Null for a part that is not asked for.
  std::size_t stride = 0;
};

/// The columns of whole point records that lie one after the other, one for each part of the format.
std::vector<LazColumn> recordColumns(const LazFormat& format, std::byte* records);

} // namespace Zamt::Host
