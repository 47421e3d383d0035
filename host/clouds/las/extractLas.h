#pragma once

#include "files/Stop.h"
#include "host/clouds/BlockTable.h"
#include "host/clouds/PointMask.h"
#include "host/clouds/las/LasFile.h"

#include <string>

namespace Zamt::Host {

/// Writes some of the points of a LAS file, as `CloudFormat::extract` asks: their records in their order, and
/// around them all bytes of the input as they are. In the header the counts, those by return, the box and the
/// places of what stands behind the points are those of the new file.
bool extractLas(const LasFile& input, const BlockTable& blocks, const PointMask& kept,
                const std::string& path, const Stop& stop, std::string& error);

} // namespace Zamt::Host
