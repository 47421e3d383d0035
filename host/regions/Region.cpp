#include "host/regions/Region.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <span>

namespace Zamt::Host {
namespace {

using Json = nlohmann::json;

constexpr const char* boxHint =
    "Write two corners as six numbers (x0 y0 z0 x1 y1 z1), four numbers (x0 y0 x1 y1), a WKT POLYGON or a "
    "GeoJSON Polygon.";

/// A message quotes no more of a text than this many bytes.
constexpr std::size_t quotedBytes = 40;

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

std::string quote(std::string_view text) {
  if (text.size() <= quotedBytes) return "\"" + std::string(text) + "\"";
  std::size_t end = quotedBytes;
  // Never through the middle of a character of UTF-8.
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return "\"" + std::string(text.substr(0, end)) + "...\"";
}

/// Reads a text from the front.
struct Cursor {
  std::string_view rest;

  void skipBlanks() {
    while (!rest.empty() && isBlank(rest.front())) rest.remove_prefix(1);
  }

  bool atEnd() {
    skipBlanks();
    return rest.empty();
  }

  bool take(char c) {
    skipBlanks();
    if (rest.empty() || rest.front() != c) return false;
    rest.remove_prefix(1);
    return true;
  }

  /// The next run of letters, in capitals; empty if there is none.
  std::string takeWord() {
    skipBlanks();
    std::string word;
    for (; !rest.empty() && isLetter(rest.front()); rest.remove_prefix(1))
      word.push_back(static_cast<char>(rest.front() & ~0x20));
    return word;
  }

  bool takeNumber(double& number) {
    skipBlanks();
    std::string_view digits = rest;
    if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-') digits.remove_prefix(1);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc{} || !std::isfinite(number)) return false;
    rest = digits.substr(static_cast<std::size_t>(end - digits.data()));
    return rest.empty() || isBlank(rest.front()) || rest.front() == ',' || rest.front() == ')';
  }
};

/// Numbers separated by blanks or commas, in parentheses nested in any way. At most `most` of them; nothing
/// if the text is anything else.
std::optional<std::vector<double>> readNumbers(std::string_view text, std::size_t most) {
  Cursor cursor{text};
  std::vector<double> numbers;
  std::size_t open = 0;
  bool mayClose = false;  // A number or a closing parenthesis stands before.
  bool needsMore = false; // A comma does.
  while (!cursor.atEnd()) {
    if (cursor.take('(')) {
      ++open;
      mayClose = needsMore = false;
    } else if (cursor.take(')')) {
      if (open == 0 || !mayClose) return std::nullopt;
      --open;
    } else if (cursor.take(',')) {
      if (!mayClose) return std::nullopt;
      mayClose = false;
      needsMore = true;
    } else {
      double number = 0;
      if (numbers.size() == most || !cursor.takeNumber(number)) return std::nullopt;
      numbers.push_back(number);
      mayClose = true;
      needsMore = false;
    }
  }
  if (open != 0 || needsMore) return std::nullopt;
  return numbers;
}

bool readBox(std::string_view text, Region& region, std::string& problem) {
  const std::optional<std::vector<double>> numbers = readNumbers(text, 6);
  if (!numbers || (numbers->size() != 4 && numbers->size() != 6)) {
    problem = "The region " + quote(text) + " can't be read. " + boxHint;
    return false;
  }
  constexpr double infinity = std::numeric_limits<double>::infinity();
  region.box = Bounds{{0, 0, -infinity}, {0, 0, infinity}};
  const std::size_t axes = numbers->size() / 2;
  for (std::size_t axis = 0; axis < axes; ++axis) {
    const double one = (*numbers)[axis];
    const double other = (*numbers)[axes + axis];
    region.box.low[axis] = std::min(one, other);
    region.box.high[axis] = std::max(one, other);
  }
  return true;
}

/// Three corners, not counting one that repeats the first.
bool enclosesSomething(const Ring& ring) {
  const std::size_t repeated = ring.size() > 1 && ring.front() == ring.back() ? 1 : 0;
  return ring.size() - repeated >= 3;
}

/// "(x y, x y, ...)", each with as many further numbers as the text likes.
bool readWktRing(Cursor& cursor, Ring& ring) {
  if (!cursor.take('(')) return false;
  do {
    std::array<double, 2> corner{};
    double further = 0;
    if (!cursor.takeNumber(corner[0]) || !cursor.takeNumber(corner[1])) return false;
    while (!cursor.atEnd() && cursor.rest.front() != ',' && cursor.rest.front() != ')')
      if (!cursor.takeNumber(further)) return false;
    ring.push_back(corner);
  } while (cursor.take(','));
  return cursor.take(')') && enclosesSomething(ring);
}

bool readWktPolygon(Cursor& cursor, Polygon& polygon) {
  if (!cursor.take('(')) return false;
  do {
    if (!readWktRing(cursor, polygon.rings.emplace_back())) return false;
  } while (cursor.take(','));
  return cursor.take(')');
}

bool readWktBody(Cursor& cursor, bool several, std::vector<Polygon>& polygons) {
  if (!several) return readWktPolygon(cursor, polygons.emplace_back()) && cursor.atEnd();
  if (!cursor.take('(')) return false;
  do {
    if (!readWktPolygon(cursor, polygons.emplace_back())) return false;
  } while (cursor.take(','));
  return cursor.take(')') && cursor.atEnd();
}

bool readWkt(std::string_view text, Region& region, std::string& problem) {
  Cursor cursor{text};
  const std::string word = cursor.takeWord();
  if (word != "POLYGON" && word != "MULTIPOLYGON") {
    problem = "The region " + quote(text) + " can't be read. " + boxHint;
    return false;
  }
  const std::string dimension = cursor.takeWord();
  const bool known = dimension.empty() || dimension == "Z" || dimension == "M" || dimension == "ZM";
  if (known && readWktBody(cursor, word == "MULTIPOLYGON", region.polygons)) return true;
  problem = word == "POLYGON" ? "The POLYGON can't be read. Write it as POLYGON ((x y, x y, x y, x y)), with "
                                "at least three corners a ring; further rings are holes."
                              : "The MULTIPOLYGON can't be read. Write it as MULTIPOLYGON (((x y, x y, x y, "
                                "x y)), ...), with at least three corners a ring.";
  return false;
}

const Json* findMember(const Json& object, const char* name) {
  if (!object.is_object()) return nullptr;
  const auto found = object.find(name);
  return found == object.end() ? nullptr : &*found;
}

std::string typeOf(const Json& object) {
  const Json* type = findMember(object, "type");
  return type != nullptr && type->is_string() ? type->get<std::string>() : std::string();
}

bool readJsonRing(const Json& corners, Ring& ring) {
  if (!corners.is_array()) return false;
  for (const Json& corner : corners) {
    if (!corner.is_array() || corner.size() < 2 || !corner[0].is_number() || !corner[1].is_number())
      return false;
    ring.push_back({corner[0].get<double>(), corner[1].get<double>()});
  }
  return enclosesSomething(ring);
}

bool readJsonPolygon(const Json& rings, std::vector<Polygon>& polygons) {
  if (!rings.is_array() || rings.empty()) return false;
  Polygon& polygon = polygons.emplace_back();
  return std::all_of(rings.begin(), rings.end(),
                     [&](const Json& ring) { return readJsonRing(ring, polygon.rings.emplace_back()); });
}

bool readJsonGeometry(const Json& geometry, std::vector<Polygon>& polygons, std::string& problem) {
  const std::string type = typeOf(geometry);
  if (type != "Polygon" && type != "MultiPolygon") {
    problem = type.empty() ? "The region's GeoJSON has a geometry without a type. "
                           : "The region's GeoJSON holds a geometry of type " + quote(type) + ". ";
    problem += "Only Polygon and MultiPolygon can be used.";
    return false;
  }
  const Json* coordinates = findMember(geometry, "coordinates");
  bool read = coordinates != nullptr && coordinates->is_array() && !coordinates->empty();
  if (read && type == "Polygon") read = readJsonPolygon(*coordinates, polygons);
  if (read && type == "MultiPolygon")
    read = std::all_of(coordinates->begin(), coordinates->end(),
                       [&](const Json& rings) { return readJsonPolygon(rings, polygons); });
  if (!read)
    problem = "The coordinates of the region's GeoJSON " + type +
              " can't be read. Each ring is a list of at least three corners [x, y].";
  return read;
}

bool readFeature(const Json& feature, std::vector<Polygon>& polygons, std::string& problem) {
  const Json* geometry = findMember(feature, "geometry");
  if (geometry != nullptr) return readJsonGeometry(*geometry, polygons, problem);
  problem = "A feature of the region's GeoJSON has no geometry. Give it a Polygon or a MultiPolygon.";
  return false;
}

bool readFeatures(const Json& collection, std::vector<Polygon>& polygons, std::string& problem) {
  const Json* features = findMember(collection, "features");
  if (features == nullptr || !features->is_array() || features->empty()) {
    problem = "The region's GeoJSON FeatureCollection holds no features. Give it at least one Polygon.";
    return false;
  }
  return std::all_of(features->begin(), features->end(),
                     [&](const Json& feature) { return readFeature(feature, polygons, problem); });
}

/// The parser and the destruction of what it makes keep their own stacks, and geometries are read to a fixed
/// depth, so that no nesting is too deep here.
bool readGeoJson(std::string_view text, Region& region, std::string& problem) {
  const Json json = Json::parse(text.begin(), text.end(), nullptr, false);
  if (json.is_discarded()) {
    problem = "The region " + quote(text) + " is not valid JSON. " + boxHint;
    return false;
  }
  const std::string type = typeOf(json);
  if (type == "FeatureCollection") return readFeatures(json, region.polygons, problem);
  if (type == "Feature") return readFeature(json, region.polygons, problem);
  return readJsonGeometry(json, region.polygons, problem);
}

} // namespace

bool parseRegion(std::string_view text, Region& region, std::string& problem) {
  region = Region{};
  Cursor cursor{text};
  if (cursor.atEnd()) {
    problem = std::string("The region is empty. ") + boxHint;
    return false;
  }
  if (cursor.rest.front() == '{') return readGeoJson(cursor.rest, region, problem);
  if (isLetter(cursor.rest.front())) return readWkt(cursor.rest, region, problem);
  return readBox(cursor.rest, region, problem);
}

bool parseVector(std::string_view text, std::array<double, 3>& vector, std::string& problem) {
  const std::optional<std::vector<double>> numbers = readNumbers(text, vector.size());
  if (!numbers || numbers->size() != vector.size()) {
    problem = "The position " + quote(text) + " can't be read. Write three numbers, such as (1, 2, 3).";
    return false;
  }
  std::copy(numbers->begin(), numbers->end(), vector.begin());
  return true;
}

} // namespace Zamt::Host
