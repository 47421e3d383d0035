#pragma once

#include "files/Stop.h"
#include "host/clouds/BlockReader.h"

#include <functional>
#include <span>
#include <string>

namespace Zamt::Host {

/// What is done with one block; the reader is at it. Blocks without points are passed over.
using BlockVisit = std::function<void(BlockReader&)>;

/// Visits the blocks of a cloud, groups of them in parallel and each group in its order by one thread;
/// `expected` are the columns that visits are likely to ask for. False, with a sentence in `problem`, when a
/// block could not be read or the work was stopped; not all blocks were visited then, and what a visit made
/// of an unreadable block means nothing.
bool forEachBlock(const PointCloud& cloud, std::span<const ColumnKey> expected, const Stop& stop,
                  const BlockVisit& visit, std::string& problem);

/// The same, one block after the other in the order of the points.
bool walkBlocks(const PointCloud& cloud, std::span<const ColumnKey> expected, const Stop& stop,
                const BlockVisit& visit, std::string& problem);

} // namespace Zamt::Host
