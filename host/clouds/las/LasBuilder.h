#pragma once

#include "host/clouds/buildCloud.h"
#include "host/clouds/las/LasSource.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Zamt::Host {

/// The points that `buildCloud` asks for with the front of a LAS 1.4 file, for a writer: each is made when it
/// is read, and is to be read once. `path` is what sentences call the file; what else is given must outlive
/// the points. Null, with a sentence in `error`, when they can't be made.
std::unique_ptr<const LasSource> makePoints(const NewCloud& description, std::uint64_t points,
                                            const FillPoint& fill, const std::string& path,
                                            std::string& error);

} // namespace Zamt::Host
