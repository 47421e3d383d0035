#pragma once

#include "host/clouds/CloudFormat.h"

#include <string>
#include <vector>

namespace Zamt::Host {

/// Writes a cloud, opened from the file `from`, to `path` as `CloudFormat::write` does, but in the format
/// that the name says: ".las", ".laz" or ".copc.laz". A file under its own name stays in its format, one with
/// another ending as well.
bool writeCloud(const CloudFormat& cloud, const std::string& from, const ClassOverlay& changed,
                const std::vector<ClassName>& addedNames, const std::string& path, const Stop& stop,
                std::string& error);

/// Writes those of its points that the mask holds, as `CloudFormat::extract` does, in the format that the
/// name says in the same way.
bool extractCloud(const CloudFormat& cloud, const std::string& from, const PointMask& kept,
                  const std::string& path, const Stop& stop, std::string& error);

} // namespace Zamt::Host
