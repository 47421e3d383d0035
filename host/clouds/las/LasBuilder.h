#pragma once

#include "host/clouds/buildCloud.h"

#include <cstdint>
#include <string>

namespace Zamt::Host {

/// Makes a LAS 1.4 file, as `buildCloud` asks.
bool buildLas(const NewCloud& description, std::uint64_t points, const FillPoint& fill,
              const std::string& path, const Stop& stop, std::string& error);

} // namespace Zamt::Host
