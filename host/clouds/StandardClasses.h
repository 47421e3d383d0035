#pragma once

#include "host/clouds/PointCloud.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

/// The classes that the ASPRS defines for points of that format (0 to 10), in number order.
std::vector<ClassName> standardClasses(unsigned pointFormat);

/// The name that class has in the cloud: the file's own, else the standard's; empty if it has none.
std::string nameOfClass(const PointCloud& cloud, std::uint8_t number);

} // namespace Zamt::Host
