#include "host/objects/BrushFilters.h"

#include "host/filters/BoxFilter.h"
#include "host/filters/ClassFilter.h"
#include "host/filters/CloudSurface.h"
#include "host/filters/DirectionFilter.h"
#include "host/filters/ExpressionFilter.h"
#include "host/filters/NeighbourFilter.h"
#include "host/filters/PolygonFilter.h"
#include "host/filters/RangeFilter.h"
#include "host/filters/SphereFilter.h"
#include "host/filters/SurfaceFilter.h"
#include "host/objects/BrushObject.h"
#include "host/objects/values.h"
#include "host/surfaces/LevelSurface.h"
#include "host/surfaces/SurfaceFile.h"
#include "host/surfaces/SurfaceText.h"

#include "sorbine/VCreator.h"

#include <array>
#include <charconv>
#include <limits>

namespace Zamt::Host {

namespace {

/// What the conditions have in common: a brush in, a brush out, and the choice to keep what does not match.
class BrushFilter : public BrushObject {
public:
  std::vector<const VInput<BrushPtr>*> brushInputs() const override { return {&brush_}; }

  bool describe(const Grid& grid, SelectionStep& step, std::string& problem) override {
    step.invert = invert_.get();
    if (make(grid, step, problem)) {
      tell(step.invert ? "Keeps the points that do not match." : "Keeps the points that match.");
      return true;
    }
    tell(problem);
    return false;
  }

protected:
  /// Puts the filter for this data into `step`; false with a sentence in `problem`.
  virtual bool make(const Grid& grid, SelectionStep& step, std::string& problem) = 0;

private:
  VInput<BrushPtr> brush_ =
      input<BrushPtr>("brush", "The points to choose from; all of them if nothing is attached.");
  VInput<bool> invert_ = input<bool>("invert", "Keep the points that do not match instead.");
};

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::string labelNames(const LabelSet& labels) {
  std::string names;
  for (const auto& [number, label] : labels.labels) {
    if (label.name.empty()) continue;
    if (!names.empty()) names += ", ";
    names += label.name;
  }
  return names;
}

/// The class that `word` names: by the name that the data gives it, or by its number.
bool classNumber(const LabelSet& labels, const std::string& word, std::int64_t& number,
                 std::string& problem) {
  for (const auto& [value, label] : labels.labels)
    if (label.name == word) {
      number = value;
      return true;
    }
  if (isNumber(word)) {
    const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (fault == std::errc()) return true;
  }
  problem = "This data has no class called \"" + word + "\". It has: " + labelNames(labels) + ".";
  return false;
}

class ByClass : public BrushFilter {
  VInput<std::string> classes_ =
      input<std::string>("classes", "The classes to keep, separated by commas: names, or numbers.");
  VInput<std::string> classfield_ =
      input<std::string>("classfield", "The field that holds the classification.", "Classification");

  bool make(const Grid& grid, SelectionStep& step, std::string& problem) override {
    std::vector<std::int64_t> numbers;
    std::string_view rest = classes_.get();
    while (!rest.empty()) {
      const std::size_t comma = std::min(rest.find(','), rest.size());
      std::string_view word = rest.substr(0, comma);
      rest.remove_prefix(std::min(comma + 1, rest.size()));
      while (word.starts_with(' ')) word.remove_prefix(1);
      while (word.ends_with(' ')) word.remove_suffix(1);
      if (word.empty()) continue;
      if (!classNumber(grid.labels, std::string(word), numbers.emplace_back(), problem)) return false;
    }
    if (numbers.empty()) {
      problem = "No class to keep was named. Write at least one, as in class(\"Ground\").";
      return false;
    }
    step.filter = makeClassFilter(*grid.cloud, classfield_.get(), numbers, problem);
    return step.filter != nullptr;
  }
};

class ByField : public BrushFilter {
  VInput<std::string> field_ = input<std::string>("field", "The field to read, such as Amplitude.");
  VInput<double> minimum_ = input<double>("minimum", "The smallest value kept.", 0);
  VInput<double> maximum_ = input<double>("maximum", "The largest value kept.", 1);
  VInput<double> component_ =
      input<double>("component", "Which value of a field that has several, counted from 0.", 0);

  bool make(const Grid& grid, SelectionStep& step, std::string& problem) override {
    step.filter =
        makeRangeFilter(*grid.cloud, field_.get(), component_.get(), minimum_.get(), maximum_.get(), problem);
    return step.filter != nullptr;
  }
};

class ByTin : public BrushFilter {
  VInput<std::string> surface_ = input<std::string>(
      "surface",
      "The PLY, OBJ or STL file of the surface, the cloud's own as in \"class:Ground\", or a height as "
      "in \"level:405.2\".");
  VInput<std::string> side_ = input<std::string>("side", "Which side to keep: below or above.", "below");
  VInput<double> margin_ =
      input<double>("margin", "How far past the surface a point has to be, in units of the cloud.", 0);
  SurfaceCache surfaces_;

  /// Heights don't matter: a surface may lie as deep below the points as it likes.
  std::shared_ptr<const StepPlace> placeOf(const HeightModel& surface) const {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto& plan = surface.planBounds();
    return std::make_shared<StepPlace>("the surface \"" + surface_.get() + '"',
                                       Bounds{{plan[0], plan[1], -infinity}, {plan[2], plan[3], infinity}});
  }

  bool make(const Grid& grid, SelectionStep& step, std::string& problem) override {
    const bool above = side_.get() == "above";
    if (!above && side_.get() != "below") {
      problem = "A surface has the sides \"below\" and \"above\", but not \"" + side_.get() + "\".";
      return false;
    }
    if (surface_.get().empty()) {
      problem = "No surface was named. Give the path of a PLY, OBJ or STL file, or write \"class:Ground\".";
      return false;
    }
    std::shared_ptr<const HeightModel> surface = open(grid, problem);
    if (!surface) return false;
    step.place = placeOf(*surface);
    step.filter = makeSurfaceFilter(std::move(surface), above, margin_.get(), problem);
    return step.filter != nullptr;
  }

  std::shared_ptr<const HeightModel> open(const Grid& grid, std::string& problem) {
    SurfaceText text;
    if (!parseSurfaceText(surface_.get(), text, problem)) return nullptr;
    if (text.kind == SurfaceText::Kind::File) return surfaces_.load(text.path, problem);
    if (text.kind == SurfaceText::Kind::Level) return std::make_shared<LevelSurface>(text.level);
    std::vector<std::int64_t> numbers;
    for (const std::string& word : text.classes)
      if (!classNumber(grid.labels, word, numbers.emplace_back(), problem)) return nullptr;
    return makeCloudSurface(*grid.cloud, numbers, text.longest, grid.stop, problem);
  }
};

class ByDirection : public BrushFilter {
  VInput<std::string> directionfield_ =
      input<std::string>("directionfield", "The field that holds the normals.", "NormalVector");
  VInput<double> tolerance_ =
      input<double>("tolerance", "How many degrees from level a normal may lean.", 15);
  VInput<std::string> relation_ = input<std::string>(
      "relation", "How a normal lies to the vertical: perpendicular, as that of a wall.", "perpendicular");

  bool make(const Grid& grid, SelectionStep& step, std::string& problem) override {
    if (relation_.get() != "perpendicular") {
      problem = "Normals can be compared as \"perpendicular\" only, not as \"" + relation_.get() + "\".";
      return false;
    }
    step.filter = makeDirectionFilter(*grid.cloud, directionfield_.get(), tolerance_.get(), problem);
    return step.filter != nullptr;
  }
};

class ByNeighbours : public BrushFilter {
  VInput<double> radius_ =
      input<double>("radius", "How far away another point may be and still count, in units of the cloud.");
  VInput<double> fewest_ = input<double>("minneighbours", "The fewest neighbours of a point kept.", 0);
  VInput<double> most_ = input<double>("maxneighbours", "The most neighbours of a point kept.", 3);

  bool make(const Grid& grid, SelectionStep& step, std::string& problem) override {
    step.cloudFilter = makeNeighbourFilter(*grid.cloud, radius_.get(), fewest_.get(), most_.get(), problem);
    return step.cloudFilter != nullptr;
  }
};

class ByBox : public BrushFilter {
  VInput<Region> box_ = input<Region>(
      "box",
      "Where to stay inside: the region of a brush, two corners as six numbers, or a polygon as WKT or "
      "GeoJSON.");

  bool make(const Grid& /*grid*/, SelectionStep& step, std::string& problem) override {
    step.filter = makeRegionFilter(box_.get(), problem);
    step.place = std::make_shared<StepPlace>("the region", boundsOf(box_.get()));
    return step.filter != nullptr;
  }
};

Bounds boxAround(const std::array<double, 3>& centre, double radius) {
  Bounds box;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    box.low[axis] = centre[axis] - radius;
    box.high[axis] = centre[axis] + radius;
  }
  return box;
}

class BySphere : public BrushFilter {
  VInput<WorldPoint> centre_ =
      input<WorldPoint>("centre", "The middle of the ball, as three world coordinates.");
  VInput<double> radius_ =
      input<double>("radius", "How far from the middle to reach, in units of the cloud.");

  bool make(const Grid& /*grid*/, SelectionStep& step, std::string& problem) override {
    if (!centre_.get().given) {
      problem = "The ball has no middle. Give it as three numbers, as in \"1, 2, 3\".";
      return false;
    }
    step.filter = makeSphereFilter(centre_.get().at, radius_.get(), problem);
    step.place = std::make_shared<StepPlace>("the ball", boxAround(centre_.get().at, radius_.get()));
    return step.filter != nullptr;
  }
};

class ByExpression : public BrushFilter {
  VInput<std::string> expression_ =
      input<std::string>("expression", "What has to be true of a point, over its fields and x, y and z.");

  bool make(const Grid& grid, SelectionStep& step, std::string& problem) override {
    step.filter = makeExpressionFilter(*grid.cloud, expression_.get(), problem);
    return step.filter != nullptr;
  }
};

/// Joins two brushes.
class Any : public BrushObject {
public:
  std::vector<const VInput<BrushPtr>*> brushInputs() const override { return {&brush_, &otherbrush_}; }

  bool describe(const Grid& /*grid*/, SelectionStep& /*step*/, std::string& problem) override {
    if (brush_.source() && otherbrush_.source()) {
      tell("Keeps the points of either brush.");
      return true;
    }
    problem = "\"" + name() + "\" joins two brushes, but one of them is not attached.";
    tell(problem);
    return false;
  }

private:
  VInput<BrushPtr> brush_ = input<BrushPtr>("brush", "The points of the one brush.");
  VInput<BrushPtr> otherbrush_ =
      input<BrushPtr>("otherbrush", "The points of the other brush, kept as well.");
};

template <class Filter>
void registerFilter(const std::string& identifier, const std::string& shortHelp,
                    const std::string& longHelp) {
  registerCreator<Filter>("Selection", identifier,
                          {.rank = 2000,
                           .shortHelp = shortHelp,
                           .longHelp = longHelp,
                           .accepts = {VAcceptInfo::of<BrushObject::BrushPtr>("brush")}});
}

} // namespace

void registerBrushFilters() {
  registerFilter<ByClass>("BrushFilterByClass", "Keeps the points of some classes.",
                          "Reads the class of each point and keeps those whose class is listed, by the name "
                          "that the data gives it or by its number.");
  registerFilter<ByField>("BrushFilterByField", "Keeps the points whose value in a field is in a range.",
                          "Compares one value of each point with a smallest and a largest value, both "
                          "included. A point without a value is not kept.");
  registerFilter<ByTin>("BrushFilterByTin", "Keeps the points below or above a surface.",
                        "Compares each point with the height of a triangulated surface above or below it, "
                        "read from a PLY, OBJ or STL file. Where the surface does not reach, nothing is "
                        "above or below it.");
  registerFilter<ByDirection>("BrushFilterByDirection", "Keeps the points on near-vertical surfaces.",
                              "Reads the normal of each point, one field of three values or three fields "
                              "ending in X, Y and Z, and keeps those that lie nearly horizontal.");
  registerFilter<ByNeighbours>("BrushFilterByNeighbours", "Keeps the points by how many others are near.",
                               "Counts the other points of the whole cloud within a radius, whether they are "
                               "selected or not, and keeps the points whose count is in a range.");
  registerFilter<ByBox>("BrushFilterByBox", "Keeps the points inside a region.",
                        "Keeps the points inside a box or a polygon, borders included. The region is an "
                        "object, or a box written as two corners.");
  registerFilter<BySphere>("BrushFilterBySphere", "Keeps the points inside a ball.",
                           "Keeps the points within a distance of a position in world coordinates.");
  registerFilter<ByExpression>("BrushFilterByExpression", "Keeps the points that an expression is true for.",
                               "Works out an expression over the fields and the coordinates x, y and z of "
                               "each point and keeps those for which it is neither 0 nor undefined.");
  registerFilter<Any>("BrushFilterAny", "Keeps the points of either of two brushes.",
                      "Joins two selections: a point is kept if one of them or both keep it.");
}

} // namespace Zamt::Host
