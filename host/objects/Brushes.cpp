#include "host/objects/Brushes.h"

#include "host/filters/BoxFilter.h"
#include "host/filters/PolygonFilter.h"
#include "host/objects/BrushObject.h"
#include "host/objects/values.h"

#include "sorbine/VCreator.h"

namespace Zamt::Host {

namespace {

/// A filter that no point passes, for a brush that nobody has drawn.
std::shared_ptr<const PointFilter> nothing(std::string& problem) { return makeBoxFilter(Bounds{}, problem); }

/// A brush whose region is written into one of its slots.
class RegionBrush : public BrushObject {
public:
  explicit RegionBrush(const std::string& slot)
      : region_(input<Region>(
            slot, "Where to select: two corners as six numbers, or a polygon as WKT or GeoJSON.")) {}

  bool describe(const Grid& /*grid*/, SelectionStep& step, std::string& problem) override {
    step.filter = makeRegionFilter(region_.get(), problem);
    step.place = std::make_shared<StepPlace>("the region", boundsOf(region_.get()));
    tell(step.filter ? "Keeps the points inside " + VValueTrait<Region>::Text(region_.get()) + "." : problem);
    return step.filter != nullptr;
  }

private:
  void compute() override { published_.publish(region_.get()); }

  VInput<Region> region_;
  VOutput<Region> published_ = output<Region>("region", "The region, for an inside condition.");
};

/// A brush drawn on the screen. Nothing draws in a scene without one, and an undrawn brush keeps nothing.
class ScreenBrush : public BrushObject {
public:
  bool describe(const Grid& /*grid*/, SelectionStep& step, std::string& problem) override {
    const Region& drawn = published_.get();
    step.filter = drawn.polygons.empty() ? nothing(problem) : makeRegionFilter(drawn, problem);
    tell(drawn.polygons.empty() ? "Nothing was drawn yet." : "Keeps the points inside what was drawn.");
    return step.filter != nullptr;
  }

private:
  static constexpr std::size_t fewestCorners = 3;

  void compute() override {
    Region region;
    const auto& chunk = screenpoints_.get();
    if (chunk && chunk->points.size() >= fewestCorners) region.polygons.push_back({{chunk->points}});
    published_.publish(std::move(region));
  }

  using ChunkPtr = Rethold::StrongPtr<PointDataChunk>;
  VInput<ChunkPtr> screenpoints_ =
      input<ChunkPtr>("screenpoints", "Where the points of the line come from that is drawn on the screen.");
  VOutput<Region> published_ =
      output<Region>("region", "The area that was drawn, for an inside condition; empty while nothing is.");
};

void registerRegionBrush(const std::string& identifier, const std::string& slot, const std::string& what) {
  registerCreator("Compute", identifier,
                  {.rank = 2000,
                   .shortHelp = "Selects the points inside " + what + ".",
                   .longHelp = "Starts a selection from the points inside " + what +
                               " in world coordinates, and serves as a region for an inside condition.",
                   .accepts = {}},
                  [slot] { return std::make_shared<RegionBrush>(slot); });
}

} // namespace

void registerBrushes() {
  registerRegionBrush("BrushFromBox", "box", "a box");
  registerRegionBrush("BrushFromPolygon", "polygon", "a polygon");
  registerCreator<ScreenBrush>(
      "Compute", "BrushFromScreenPoints",
      {.rank = 2000,
       .shortHelp = "Selects the points inside a line drawn on the screen.",
       .longHelp = "Starts a selection from the points inside a lasso. While nobody has drawn one, it keeps "
                   "no point.",
       .accepts = {VAcceptInfo::of<Rethold::StrongPtr<PointDataChunk>>("screenpoints")}});
}

} // namespace Zamt::Host
