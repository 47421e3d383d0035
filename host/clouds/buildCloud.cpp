#include "host/clouds/buildCloud.h"

#include "host/clouds/cloudEnding.h"
#include "host/clouds/las/LasBuilder.h"
#include "host/clouds/las/LasWriter.h"
#include "host/clouds/laz/LazWriter.h"

namespace Zamt::Host {

bool buildCloud(const NewCloud& description, std::uint64_t points, const FillPoint& fill,
                const std::string& path, const Stop& stop, std::string& error) {
  const std::string_view ending = cloudEnding(path);
  if (ending == copcEnding) {
    error =
        "\"" + path +
        "\" can't be made, since new points are not sorted into the tree of a COPC file. Let the name end "
        "in .laz instead.";
    return false;
  }
  const auto made = makePoints(description, points, fill, path, error);
  if (!made) return false;
  const ClassOverlay unchanged(made->blocks());
  return ending == lazEnding ? writeAsLaz(*made, unchanged, {}, path, stop, error)
                             : writeAsLas(*made, unchanged, {}, path, stop, error);
}

} // namespace Zamt::Host
