#include "host/clouds/buildCloud.h"

#include "host/clouds/las/LasBuilder.h"

namespace Zamt::Host {

bool buildCloud(const NewCloud& description, std::uint64_t points, const FillPoint& fill,
                const std::string& path, const Stop& stop, std::string& error) {
  return buildLas(description, points, fill, path, stop, error);
}

} // namespace Zamt::Host
