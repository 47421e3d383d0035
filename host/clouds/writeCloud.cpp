#include "host/clouds/writeCloud.h"

#include "host/clouds/cloudEnding.h"
#include "host/clouds/las/KeptPoints.h"
#include "host/clouds/las/LasWriter.h"
#include "host/clouds/laz/LazWriter.h"

namespace Zamt::Host {

namespace {

/// Whether what the format itself writes is what a name with that ending says.
bool isOwn(const CloudFormat& cloud, std::string_view ending) {
  return ending.empty() || cloud.ending().empty() || cloud.ending() == ending ||
         (cloud.ending() == copcEnding && ending == lazEnding);
}

/// Why the cloud can't be written in the format with that ending; empty if it can.
std::string whyNotConverted(const CloudFormat& cloud, const std::string& from, const std::string& path,
                            std::string_view ending) {
  const CloudDescription& about = cloud.description();
  if (ending == copcEnding)
    return "\"" + path + "\" can't be written from \"" + from +
           "\", whose points are not sorted into the tree of a COPC file. Let the name end in .laz instead.";
  if (about.pointFormat >= 6 && about.versionMinor < 4)
    return "\"" + from + "\" is in version 1." + std::to_string(about.versionMinor) +
           " of LAS, in which points of format " + std::to_string(about.pointFormat) +
           " can't be converted. Convert it to LAS 1.4 first.";
  return {};
}

} // namespace

bool writeCloud(const CloudFormat& cloud, const std::string& from, const ClassOverlay& changed,
                const std::vector<ClassName>& addedNames, const std::string& path, const Stop& stop,
                std::string& error) {
  const std::string_view ending = cloudEnding(path);
  const LasSource* const source = cloud.source();
  if (!source || path == from || isOwn(cloud, ending))
    return cloud.write(changed, addedNames, path, stop, error);
  error = whyNotConverted(cloud, from, path, ending);
  if (!error.empty()) return false;
  return ending == lasEnding ? writeAsLas(*source, changed, addedNames, path, stop, error)
                             : writeAsLaz(*source, changed, addedNames, path, stop, error);
}

bool extractCloud(const CloudFormat& cloud, const std::string& from, const PointMask& kept,
                  const std::string& path, const Stop& stop, std::string& error) {
  const std::string_view ending = cloudEnding(path);
  const LasSource* const source = cloud.source();
  if (!source || path == from || isOwn(cloud, ending)) return cloud.extract(kept, path, stop, error);
  error = whyNotConverted(cloud, from, path, ending);
  if (!error.empty()) return false;
  const KeptPoints points(*source, kept);
  const ClassOverlay unchanged(points.blocks());
  return ending == lasEnding ? writeAsLas(points, unchanged, {}, path, stop, error)
                             : writeAsLaz(points, unchanged, {}, path, stop, error);
}

} // namespace Zamt::Host
