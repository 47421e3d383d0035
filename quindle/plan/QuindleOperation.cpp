#include "quindle/plan/QuindleOperation.h"

#include "quindle/plan/conditionCosts.h"

#include <algorithm>

namespace Zamt {

namespace {

QuindleOpParam needed(const char* name, const char* slot, const char* help) {
  return {name, slot, help, true, {}};
}

QuindleOpParam optional(const char* name, const char* slot, const QuindleValue& value, const char* help) {
  return {name, slot, help, false, value};
}

QuindleOperation relativeToSurface(const char* side, const char* summary, const std::string& phrase) {
  return {
      side,
      "Selection/BrushFilterByTin",
      summary,
      "Compares each point against a triangulated surface read from an M8 file - a water surface, a terrain "
      "model, a previous epoch - and keeps the ones " +
          phrase +
          "Points the surface does not reach over are never kept, since outside its footprint there is no "
          "below or above. Note that opening a surface writes a search index into the file, so it has to be "
          "writable.",
      worksPerPoint.cost,
      {needed("surface", "surface", "Path of the M8 file holding the surface."),
       optional(
           "margin", "margin", QuindleValue::number(0),
           "How far past the surface a point has to be before it counts. Raise it to leave a band around "
           "the surface alone, which is how the surface's own points are kept out.")},
      {{"side", QuindleValue::identifier(side)}}};
}

std::vector<QuindleOperation> makeCatalogue() {
  const auto number = QuindleValue::number;
  const auto text = QuindleValue::text;
  return {
      {"class",
       "Selection/BrushFilterByClass",
       "Keep only the points of the given classes.",
       "Reads the classification of each point and keeps the ones whose class is named here. Classes may be "
       "given by name when the data carries a label set, or by number when it does not. This is the "
       "condition almost every editing Quindle starts with, because it is what stops an edit from touching "
       "data that was already correct.",
       readsOneValue.cost,
       {needed("classes", "classes",
               "Which classes to keep, separated by commas. Names when the data has a label set, otherwise "
               "the numbers."),
        optional("field", "classfield", text("Classification"),
                 "The field holding the classification. Only needed when the data keeps it somewhere other "
                 "than the usual Classification.")},
       {}},
      {"field",
       "Selection/BrushFilterByField",
       "Keep the points whose value in a field falls in a range.",
       "Compares one value per point against an interval and keeps those inside it. Works on any numeric "
       "field the data carries - Intensity, Amplitude, Deviation, Planarity, or anything computed earlier in "
       "the Quindle. Written either as a range or as a comparison such as Amplitude > 120, which means the "
       "same thing.",
       readsOneValue.cost,
       {needed("name", "field", "The field to read."),
        optional("minimum", "minimum", number(0), "Smallest value still kept."),
        optional("maximum", "maximum", number(1), "Largest value still kept."),
        optional("component", "component", number(0),
                 "Which component to read, for a field that holds more than one value per point. Zero is the "
                 "first.")},
       {}},
      relativeToSurface("below", "Keep the points under a triangulated surface.", "underneath it. "),
      relativeToSurface("above", "Keep the points over a triangulated surface.", "above it. "),
      {"vertical",
       "Selection/BrushFilterByDirection",
       "Keep the points sitting on a near-vertical surface.",
       "Reads the surface normal of each point and keeps those whose normal lies within a tolerance of "
       "horizontal - which is what the normal of a wall does. This is how \"points on a wall\" is said.\n"
       "It reads a normal the data already carries rather than working one out per point, because estimating "
       "a normal costs roughly a thousand times more than reading one. If the data has no NormalVector field "
       "yet, compute it once first and this becomes almost free.",
       readsOneValue.cost,
       {optional("tolerance", "tolerance", number(15),
                 "How many degrees away from exactly vertical a surface may lean and still count."),
        optional("field", "directionfield", text("NormalVector"), "The field holding the surface normals.")},
       {{"relation", QuindleValue::identifier("perpendicular")}}},
      {"neighbours",
       "Selection/BrushFilterByNeighbours",
       "Keep the points with a given number of others nearby.",
       "Counts how many other points lie within a radius and keeps those whose count falls in the given "
       "range. Asks about the company a point keeps rather than any value it carries, so it needs no field "
       "at all. A low maximum finds the points standing alone - noise, birds, stray returns - and a high "
       "minimum finds the solid interior of a surface while leaving its ragged edge out.\n"
       "By far the most expensive condition here, so write it alongside cheaper ones and let them narrow the "
       "work down first.",
       searchesAround.cost,
       {needed("radius", "radius", "How far away another point may be and still count."),
        optional("minimum", "minneighbours", number(0),
                 "Fewest neighbours a point may have and still be kept."),
        optional("maximum", "maxneighbours", number(3),
                 "Most neighbours a point may have and still be kept.")},
       {}},
      {"inside",
       "Selection/BrushFilterByBox",
       "Keep the points inside a region.",
       "Restricts the selection to a box in world coordinates. This is also how a Quindle is given somewhere "
       "to work when nobody is drawing on the screen: hand it the region of the active tile and it covers "
       "exactly that tile, which is what makes the same Quindle usable by hand and over a whole dataset.",
       freeOfCost.cost,
       {needed("region", "box",
               "The region to stay inside - a tile, a bounding box, or a box written out in full.")},
       {}},
      {"within",
       "Selection/BrushFilterBySphere",
       "Keep the points within a distance of a position.",
       "Restricts the selection to a ball in world coordinates. Useful for working around a point picked in "
       "the scene without drawing a region by hand.",
       freeOfCost.cost,
       {needed("centre", "centre", "Middle of the ball, in world coordinates."),
        needed("radius", "radius", "How far from the middle to reach.")},
       {}},
      {"expr",
       "Selection/BrushFilterByExpression",
       "Keep the points an arbitrary expression is true for.",
       "The way out when no other condition fits. Writes an expression over the fields of each point - "
       "\"Amplitude > 120 and z < 4.5\" - and keeps the points it holds for. Fields are named as they are in "
       "the data, and the coordinates are x, y and z.\n"
       "Slower than the conditions above, which are compiled, but it runs over the same data in the same "
       "parallel pass, so it is not slow in absolute terms. Reach for a named condition when one exists, and "
       "this when none does.",
       worksPerPoint.cost,
       {needed("expression", "expression", "The expression to test, in quotes.")},
       {}}};
}

} // namespace

const QuindleOpParam* QuindleOperation::findParam(const std::string& wanted) const {
  const auto found = std::find_if(params.begin(), params.end(),
                                  [&](const QuindleOpParam& param) { return param.name == wanted; });
  return found == params.end() ? nullptr : &*found;
}

unsigned QuindleOperation::requiredCount() const {
  return static_cast<unsigned>(std::count_if(params.begin(), params.end(),
                                             [](const QuindleOpParam& param) { return param.required; }));
}

const std::vector<QuindleOperation>& allQuindleOperations() {
  static const std::vector<QuindleOperation> catalogue = makeCatalogue();
  return catalogue;
}

const QuindleOperation* findQuindleOperation(const std::string& name) {
  for (const QuindleOperation& operation : allQuindleOperations())
    if (operation.name == name) return &operation;
  return nullptr;
}

} // namespace Zamt
