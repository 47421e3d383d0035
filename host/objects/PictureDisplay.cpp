#include "host/objects/PictureDisplay.h"

#include "host/views/renderCloud.h"

#include "sorbine/VCreator.h"
#include "sorbine/VObject.h"

namespace Zamt::Host {

namespace {

class PictureDisplay : public VObject {
public:
  explicit PictureDisplay(std::shared_ptr<ActionFiles> files) : files_(std::move(files)) {}

private:
  using GridPtr = Rethold::StrongPtr<Grid>;
  using FieldPtr = Rethold::StrongPtr<FieldHandle>;

  std::shared_ptr<ActionFiles> files_;
  VInput<GridPtr> grid_ = input<GridPtr>("grid", "The cloud to draw.");
  VInput<FieldPtr> mask_ =
      input<FieldPtr>("mask", "The points to draw in front of all others, in the mask colour.");
  VInput<std::string> maskdisplay_ =
      input<std::string>("maskdisplay", "How to draw masked points: fill or outline.", "fill");
  VInput<double> width_ = input<double>("width", "The width of the picture in pixels.", View{}.width);
  VInput<double> azimuth_ =
      input<double>("azimuth", "Which way to look, in degrees clockwise from north.", View{}.azimuth);
  VInput<double> elevation_ = input<double>(
      "elevation", "How many degrees above the horizon to look from; 90 is straight from above.",
      View{}.elevation);
  VInput<std::string> file_ = input<std::string>("file", "The PNG file to write.");
  Rethold::StrongPtr<VSlot> save_ =
      action("save", "Draws the cloud and writes the picture to the file.", [this] { save(); });
  VOutput<std::string> problem_ =
      output<std::string>("problem", "Why there is no picture; empty if there is one.");
  VOutput<std::string> status_ = output<std::string>("status", "What was drawn.");

  void save() {
    const GridPtr& grid = grid_.get();
    std::string problem;
    if (!grid) {
      problem = "No cloud is attached to draw.";
    } else if (file_.get().empty()) {
      problem = "No file was named to draw into.";
    } else {
      View view;
      view.width =
          width_.get() >= 1 && width_.get() <= 1e6 ? static_cast<unsigned>(width_.get()) : view.width;
      view.azimuth = azimuth_.get();
      view.elevation = elevation_.get();
      view.outlineMask = maskdisplay_.get() == "outline";
      Image image;
      if (renderCloud(*grid->cloud, mask(), view, grid->stop, image, problem)) write(image, problem);
    }
    problem_.publish(problem);
    status_.publish(problem.empty() ? "Drew " + file_.get() + "." : problem);
  }

  void write(const Image& image, std::string& problem) {
    if (files_->dry || writePng(image, file_.get(), problem)) files_->paths.push_back(file_.get());
  }

  /// The attached mask, if an editor wrote one for this cloud.
  const PointMask* mask() const {
    const FieldPtr& field = mask_.get();
    if (!field || field->grid != grid_.get()) return nullptr;
    const auto found = field->grid->masks.find(field->name);
    return found == field->grid->masks.end() ? nullptr : &found->second;
  }
};

} // namespace

void registerPictureDisplay(const Surroundings& surroundings) {
  registerCreator(
      "Display", "Picture",
      {.rank = 2000,
       .shortHelp = "Draws a cloud into a PNG file.",
       .longHelp = "Draws every point in the colour of its class, seen from above or from the side, and the "
                   "points of a mask in front of all others.",
       .accepts = {VAcceptInfo::of<Rethold::StrongPtr<Grid>>("grid")}},
      [files = surroundings.files] { return std::make_shared<PictureDisplay>(files); });
}

} // namespace Zamt::Host
