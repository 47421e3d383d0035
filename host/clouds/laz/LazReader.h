#pragma once

#include "host/clouds/laz/LazFile.h"

#include <memory>

namespace Zamt::Host {

/// A reader whose blocks are the chunks of the file. Of layered points it decodes the columns that are
/// expected when the first one of a block is asked for, and others when they are. Its memory is that of the
/// columns of the longest chunk.
std::unique_ptr<ColumnReader> makeLazReader(const LazFile& file);

} // namespace Zamt::Host
