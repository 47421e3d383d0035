#include "host/objects/values.h"

#include <span>

namespace Zamt {

namespace {

std::string numbers(std::span<const double> values) {
  std::string text;
  for (const double value : values) {
    if (!text.empty()) text += ' ';
    text += VValueTrait<double>::Text(value);
  }
  return text;
}

std::string wellKnownText(const std::vector<Host::Polygon>& polygons) {
  std::string text = "MULTIPOLYGON (";
  for (const Host::Polygon& polygon : polygons) {
    text += &polygon == polygons.data() ? "(" : ", (";
    for (const Host::Ring& ring : polygon.rings) {
      text += &ring == polygon.rings.data() ? "(" : ", (";
      for (const std::array<double, 2>& corner : ring) {
        if (&corner != ring.data()) text += ", ";
        text += numbers(corner);
      }
      text += ')';
    }
    text += ')';
  }
  return text + ')';
}

} // namespace

bool VValueTrait<Host::Region>::setValueFromText(Host::Region& region, const std::string& text) {
  Host::Region read;
  std::string problem;
  if (!Host::parseRegion(text, read, problem)) return false;
  region = std::move(read);
  return true;
}

std::string VValueTrait<Host::Region>::Text(const Host::Region& region) {
  if (!region.polygons.empty()) return wellKnownText(region.polygons);
  if (region.box.empty()) return {};
  return numbers(region.box.low) + ' ' + numbers(region.box.high);
}

bool VValueTrait<Host::WorldPoint>::setValueFromText(Host::WorldPoint& point, const std::string& text) {
  std::string problem;
  Host::WorldPoint read{.at = {}, .given = true};
  if (!Host::parseVector(text, read.at, problem)) return false;
  point = read;
  return true;
}

std::string VValueTrait<Host::WorldPoint>::Text(const Host::WorldPoint& point) {
  return point.given ? numbers(point.at) : std::string();
}

} // namespace Zamt
