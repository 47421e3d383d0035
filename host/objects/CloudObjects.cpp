#include "host/objects/CloudObjects.h"

#include "sorbine/VCreator.h"

namespace Zamt::Host {

namespace {

using GridPtr = Rethold::StrongPtr<Grid>;
using FieldPtr = Rethold::StrongPtr<FieldHandle>;

/// Picks one field of a cloud. The name is written twice around an "@", as scene files do; the first is the
/// field of the data.
class FieldObject : public VObject {
  VInput<GridPtr> grid_ = input<GridPtr>("grid", "The cloud that has the field.");
  VInput<std::string> fieldname_ =
      input<std::string>("fieldname", "The name of the field, written as \"Classification@Classification\".");
  VOutput<FieldPtr> field_ = output<FieldPtr>("field", "The field, for objects that read or write one.");
  VOutput<GridPtr> through_ = output<GridPtr>("grid", "The cloud, passed on.");
  VOutput<std::string> status_ = output<std::string>("status", "Which field of which cloud that is.");

  void compute() override {
    const std::string name = fieldname_.get().substr(0, fieldname_.get().find('@'));
    through_.publish(grid_.get());
    if (!grid_.get()) {
      field_.publish(nullptr);
      status_.publish("No cloud is attached.");
      return;
    }
    const FieldPtr& current = field_.get();
    if (!current || current->grid != grid_.get() || current->name != name)
      field_.publish(std::make_shared<FieldHandle>(FieldHandle{grid_.get(), name}));
    status_.publish("The field " + name + " of " + grid_.get()->cloud->path() + ".");
  }
};

} // namespace

Rethold::StrongPtr<CloudSource> CloudSource::first() {
  Rethold::StrongPtr<CloudSource> found;
  iterate(Rethold::typeOf<VObject>(),
          [&found](int, const Rethold::StrongPtr<VManagedObject>& object, const auto&) {
            found = std::dynamic_pointer_cast<CloudSource>(object);
            return found == nullptr;
          });
  return found;
}

void CloudSource::compute() {
  std::string problem;
  GridPtr grid;
  if (file_.get().empty())
    problem = "No file was named.";
  else
    grid = openGrid(file_.get(), surroundings_, problem);
  status_.publish(grid ? std::to_string(grid->cloud->size()) + " points of " + grid->cloud->path() + "."
                       : problem);
  problem_.publish(problem);
  grid_.publish(std::move(grid));
}

void registerCloudObjects(const Surroundings& surroundings) {
  registerCreator("Lattix", "PointCloud",
                  {.rank = 2000,
                   .shortHelp = "Reads a point cloud from a LAS file.",
                   .longHelp = "Opens a LAS file of any version and point format and publishes its "
                               "points with all fields, extra bytes included.",
                   .accepts = {}},
                  [surroundings] { return std::make_shared<CloudSource>(surroundings); });
  registerCreator<FieldObject>("Lattix", "Field",
                               {.rank = 2000,
                                .shortHelp = "Picks one field of a cloud.",
                                .longHelp = "Publishes a field of a cloud by its name, such as the "
                                            "classification, for objects that read or write one.",
                                .accepts = {VAcceptInfo::of<GridPtr>("grid")}});
}

} // namespace Zamt::Host
